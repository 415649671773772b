// SPDX-License-Identifier: MIT
#include "ui/qt/device_pixels.h"

#include <QPainter>
#include <QTransform>
#include <QtMath>
#include <algorithm>

namespace tarnwick::qt {

namespace {

/// Fractions of a pixel below this are rounding errors of the arithmetic.
constexpr qreal kTolerance = 1e-3;

int pixel(qreal coordinate) {
    return qFloor(coordinate + kTolerance);
}

}  // namespace

QRectF onPixelRows(const QPainter& painter, const QRectF& rect) {
    // Not the device's own ratio: the painter of a widget reports the widget as its device, even
    // while it draws into something else.
    const QTransform& device = painter.deviceTransform();
    const int bottom = pixel(device.map(rect.bottomLeft()).y());
    const int height = std::max(1, qRound(rect.height() * device.m22()));
    const qreal top = device.inverted().map(QPointF(0, bottom - height)).y();
    return {rect.left(), top, rect.width(), height / device.m22()};
}

QPointF onPixel(const QPainter& painter, const QPointF& position) {
    const QTransform& device = painter.deviceTransform();
    const QPointF mapped = device.map(position);
    return device.inverted().map(QPointF(qRound(mapped.x()), qRound(mapped.y())));
}

}  // namespace tarnwick::qt
