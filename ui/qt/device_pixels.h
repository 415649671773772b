// Edges that fall on whole pixels also where a logical pixel is not a whole number of them.
#pragma once

#include <QPointF>
#include <QRectF>

class QPainter;

namespace tarnwick::qt {

/// The rectangle with its upper and its lower edge on the boundary of two of the device's pixels.
/// Rectangles of one height are equally many pixels high, wherever they lie, one at least. It moves
/// by less than a pixel, upwards.
QRectF onPixelRows(const QPainter& painter, const QRectF& rect);

/// The place in logical pixels of the device's pixel that `position` lies in.
QPointF onPixel(const QPainter& painter, const QPointF& position);

}  // namespace tarnwick::qt
