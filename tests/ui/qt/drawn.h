// SPDX-License-Identifier: MIT
// Finds what a widget has drawn.
#pragma once

#include <QImage>
#include <QPainter>
#include <QString>
#include <QWidget>
#include <functional>
#include <optional>
#include <string_view>

#include "ui/qt/symbols.h"
#include "ui/qt/theme.h"

namespace tarnwick::qt {

/// A picture of a widget and its children on a plain background.
inline QImage drawn(QWidget* widget, const QColor& ground) {
    QImage image(widget->size(), QImage::Format_RGB32);
    image.fill(ground);
    widget->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

/// Whether this part of a widget's picture shows exactly this symbol.
inline bool showsSymbol(const QImage& seen, std::string_view name, const QColor& colour,
                        const QPoint& position, int size, const QColor& ground) {
    QImage expected(size, size, QImage::Format_RGB32);
    expected.fill(ground);
    const QImage plain = expected;
    QPainter painter(&expected);
    paintSymbol(painter, name, colour, QPointF(0, 0), size);
    painter.end();
    return expected != plain && seen.copy(QRect(position, QSize(size, size))) == expected;
}

/// The baseline of a text that begins at `x`, in exactly this style and colour, on that background;
/// absent if there is no such text.
inline std::optional<int> baselineOf(const QImage& seen, const TextStyle& style,
                                     const QColor& colour, const QString& text, qreal x,
                                     const QColor& ground) {
    QImage expected(seen.width(), style.lineHeight(), QImage::Format_RGB32);
    expected.fill(ground);
    const QImage plain = expected;
    QPainter painter(&expected);
    style.draw(painter, QPointF(x, style.ascent()), text, colour);
    painter.end();
    QRect ink;
    for (int row = 0; row < expected.height(); ++row) {
        for (int column = 0; column < expected.width(); ++column) {
            if (expected.pixel(column, row) != plain.pixel(column, row)) {
                ink |= QRect(column, row, 1, 1);
            }
        }
    }
    if (ink.isEmpty()) {
        return std::nullopt;
    }
    const QImage inked = expected.copy(ink);
    for (int top = 0; top + ink.height() <= seen.height(); ++top) {
        if (seen.copy(ink.left(), top, ink.width(), ink.height()) == inked) {
            return top - ink.top() + style.ascent();
        }
    }
    return std::nullopt;
}

}  // namespace tarnwick::qt
