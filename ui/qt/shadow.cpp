// SPDX-License-Identifier: MIT
#include "ui/qt/shadow.h"

#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QtMath>
#include <algorithm>
#include <cmath>
#include <qdrawutil.h>

namespace tarnwick::qt {

namespace {

/// The shadow falls this far down, logical pixels.
constexpr qreal kDrop = 5;
/// Its darkness falls to a third over this distance, logical pixels.
constexpr qreal kSoftness = 11;

/// Distance from a point to a rounded rectangle; 0 inside.
qreal distance(qreal x, qreal y, const QRectF& rect, qreal corner) {
    const qreal dx = std::max({rect.left() + corner - x, x - rect.right() + corner, qreal(0)});
    const qreal dy = std::max({rect.top() + corner - y, y - rect.bottom() + corner, qreal(0)});
    return std::max(std::hypot(dx, dy) - corner, qreal(0));
}

/// The shadow of the smallest rectangle that has all four corners, in device pixels. Larger ones
/// are made by stretching it.
QPixmap tile(int margin, int corner, qreal opacity, qreal ratio) {
    const int side = 2 * (margin + corner + qCeil(kDrop)) + 1;
    const int pixels = qCeil(side * ratio);
    const QRectF caster =
        QRectF(0, 0, side, side).adjusted(margin, margin + kDrop, -margin, -margin + kDrop);
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < pixels; ++y) {
        for (int x = 0; x < pixels; ++x) {
            const qreal far =
                distance((x + 0.5) / ratio, (y + 0.5) / ratio, caster, corner) / kSoftness;
            // The shadow fades to nothing at the margin, so that no edge shows.
            const qreal fade =
                std::clamp(1 - far * kSoftness / (margin - kDrop), qreal(0), qreal(1));
            image.setPixel(x, y, qRgba(0, 0, 0, qRound(255 * opacity * std::exp(-far) * fade)));
        }
    }
    return QPixmap::fromImage(image);
}

}  // namespace

void paintShadow(QPainter& painter, const QRect& rect, int corner, bool isDark) {
    const qreal opacity = isDark ? 0.42 : 0.2;
    const qreal ratio = painter.device()->devicePixelRatioF();
    const QPixmap pixmap = tile(kShadowMargin, corner, opacity, ratio);
    const int border = qRound((kShadowMargin + corner + qCeil(kDrop)) * ratio);
    const QMargins margins(border, border, border, border);
    const QRect outer = rect.adjusted(-kShadowMargin, -kShadowMargin, kShadowMargin, kShadowMargin);
    const QPoint first(qRound(outer.left() * ratio), qRound(outer.top() * ratio));
    const QPoint end(qRound((outer.right() + 1) * ratio), qRound((outer.bottom() + 1) * ratio));
    // In device pixels: parts that met between two pixels would leave a seam.
    painter.save();
    painter.scale(1 / ratio, 1 / ratio);
    qDrawBorderPixmap(&painter, QRect(first, end - QPoint(1, 1)), margins, pixmap,
                      QRect(QPoint(), pixmap.size()), margins);
    painter.restore();
}

}  // namespace tarnwick::qt
