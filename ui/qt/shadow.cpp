// SPDX-License-Identifier: MIT
#include "ui/qt/shadow.h"

#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QtMath>
#include <algorithm>
#include <cmath>
#include <utility>

namespace tarnwick::qt {

namespace {

/// The shadow falls this far down, logical pixels.
constexpr qreal kDrop = 5;
/// Its darkness falls to a third over this distance, logical pixels.
constexpr qreal kSoftness = 11;

/// How far a place lies outside a span that starts at `start`; 0 behind its start.
qreal outside(qreal place, qreal start) {
    return place < start ? start - place : 0;
}

/// The shadow of the smallest rectangle that has all four corners, in device pixels. Larger ones
/// are made by stretching it. It is drawn at each opening, so what lies under the rectangle or
/// beyond the shadow costs no exponential function, and the right half mirrors the left one.
QPixmap tile(int margin, int corner, qreal opacity, qreal ratio) {
    const int side = 2 * (margin + corner + qCeil(kDrop)) + 1;
    const int pixels = qCeil(side * ratio);
    // Where the straight edges of the rectangle begin and end.
    const qreal left = margin + corner;
    const qreal top = left + kDrop;
    const qreal bottom = side - left + kDrop;
    const qreal reach = margin - kDrop;
    const int full = qRound(255 * opacity);
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < pixels; ++y) {
        const qreal centre = (y + 0.5) / ratio;
        const qreal dy = std::max(outside(centre, top), outside(-centre, -bottom));
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < (pixels + 1) / 2; ++x) {
            const qreal dx = outside((x + 0.5) / ratio, left);
            const qreal far = std::sqrt(dx * dx + dy * dy) - corner;
            // The shadow fades to nothing at the margin, so that no edge shows.
            const int alpha =
                far <= 0 ? full
                : far >= reach
                    ? 0
                    : qRound(255 * opacity * std::exp(-far / kSoftness) * (1 - far / reach));
            line[x] = line[pixels - 1 - x] = qRgba(0, 0, 0, alpha);
        }
    }
    return QPixmap::fromImage(std::move(image));
}

}  // namespace

void paintShadow(QPainter& painter, const QRect& rect, int corner, bool isDark) {
    const qreal opacity = isDark ? 0.42 : 0.2;
    const qreal ratio = painter.device()->devicePixelRatioF();
    const QPixmap pixmap = tile(kShadowMargin, corner, opacity, ratio);
    const int border = qRound((kShadowMargin + corner + qCeil(kDrop)) * ratio);
    const int middle = pixmap.width() - 2 * border;
    const QRect outer = rect.adjusted(-kShadowMargin, -kShadowMargin, kShadowMargin, kShadowMargin);
    // In device pixels: parts that met between two pixels would leave a seam.
    const int left = qRound(outer.left() * ratio);
    const int top = qRound(outer.top() * ratio);
    const int right = qRound((outer.right() + 1) * ratio) - border;
    const int bottom = qRound((outer.bottom() + 1) * ratio) - border;
    const int far = border + middle;
    const int width = right - left - border;
    const int height = bottom - top - border;
    painter.save();
    painter.scale(1 / ratio, 1 / ratio);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    const auto part = [&](const QRect& target, const QPoint& source, const QSize& size) {
        painter.drawPixmap(target, pixmap, QRect(source, size));
    };
    const QSize square(border, border);
    part({{left, top}, square}, {0, 0}, square);
    part({{right, top}, square}, {far, 0}, square);
    part({{left, bottom}, square}, {0, far}, square);
    part({{right, bottom}, square}, {far, far}, square);
    part({left + border, top, width, border}, {border, 0}, {middle, border});
    part({left + border, bottom, width, border}, {border, far}, {middle, border});
    part({left, top + border, border, height}, {0, border}, {border, middle});
    part({right, top + border, border, height}, {far, border}, {border, middle});
    painter.restore();
}

}  // namespace tarnwick::qt
