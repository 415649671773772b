// SPDX-License-Identifier: MIT
// Edges that fall on whole device pixels, also if a logical pixel is not a whole number of them.
#pragma once

#include <QPointF>
#include <QRectF>

class QPainter;

namespace tarnwick::qt {

/// The rectangle with its upper and lower edge on boundaries of device pixels. Rectangles of equal
/// height become equally many pixels high, at least one, wherever they are. The rectangle moves
/// upwards by less than a pixel.
QRectF onPixelRows(const QPainter& painter, const QRectF& rect);

/// The corner of a device pixel, in logical pixels, that is nearest to `position`. The toolkit cuts
/// widgets there, too.
QPointF onPixel(const QPainter& painter, const QPointF& position);

}  // namespace tarnwick::qt
