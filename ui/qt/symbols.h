// SPDX-License-Identifier: MIT
// The program's own symbols: each is one SVG on a grid of 16, drawn in one colour at any scale.
#pragma once

#include <QColor>
#include <QImage>
#include <QPointF>
#include <string_view>

class QPainter;

namespace tarnwick::qt {

/// Whether there is a drawing of that name ("cpu", "checkmark.circle.fill", ...).
bool hasSymbol(std::string_view name);

/// The symbol in `colour` on a transparent square, `size` logical pixels wide, at a device pixel
/// ratio. Marks cut out of filled symbols are white, or dark in
/// a bright colour. Null for a name without a drawing. The latest
/// images are kept, at most kSymbolCacheBytes of them in all. Main thread.
QImage symbolImage(std::string_view name, const QColor& colour, qreal size,
                   qreal devicePixelRatio = 1);

/// The same, `pixels` wide, drawn anew and not cached: for symbols that are drawn rarely.
QImage drawnSymbol(std::string_view name, const QColor& colour, int pixels);

/// Paints symbolImage() with its upper left corner at `position`, at the painter's own scale, and
/// turned clockwise around its middle by a share of a whole turn.
void paintSymbol(QPainter& painter, std::string_view name, const QColor& colour,
                 const QPointF& position, qreal size, qreal turn = 0);

/// The most bytes of pixels in the cache.
inline constexpr int kSymbolCacheBytes = 128 * 1024;

}  // namespace tarnwick::qt
