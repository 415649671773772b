// SPDX-License-Identifier: MIT
#include "ui/qt/usage_bar_widget.h"

#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <QtMath>
#include <algorithm>
#include <cmath>
#include <utility>

#include "ui/qt/device_pixels.h"
#include "ui/qt/grid.h"
#include "ui/qt/row_content.h"

namespace tarnwick::qt {

namespace {

void paintBar(QPainter& painter, double fraction, const QColor& color, const Theme& theme,
              const QRectF& place) {
    const QRectF rect = onPixelRows(painter, place);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QPainterPath track;
    track.addRoundedRect(rect, grid::kBarCorner, grid::kBarCorner);
    painter.fillPath(track, theme.color(ColorRole::track));
    const qreal filled = rect.width() * fraction;
    if (filled <= 0) {
        return;
    }
    // A fill that is too short for round ends of its own takes the shape of the track's end.
    QPainterPath fill;
    fill.addRoundedRect(
        filled < 2 * grid::kBarCorner
            ? QRectF(rect.left() + filled - rect.width(), rect.top(), rect.width(), rect.height())
            : QRectF(rect.left(), rect.top(), filled, rect.height()),
        grid::kBarCorner, grid::kBarCorner);
    painter.fillPath(filled < 2 * grid::kBarCorner ? fill.intersected(track) : fill, color);
}

}  // namespace

UsageBarWidget::UsageBarWidget(const Theme& theme, std::shared_ptr<Motion> motion, QWidget* parent)
    : ValueBlockWidget(theme, parent), fraction_(std::move(motion), [this] { barMoved(); }) {}

void UsageBarWidget::valueChanged() {
    const double next = value().fraction();
    const bool isStep = std::abs(next - fraction_.value()) * width() >= Motion::kLeastStep;
    if (std::exchange(isBegun_, true) && isStep) {
        fraction_.moveTo(next, Motion::kLeastRest / width());
    } else {
        fraction_.jumpTo(next);
    }
    drawnFraction_ = fraction_.value();
    announceValue();
}

QRect UsageBarWidget::barRect() const {
    return {0, height() - grid::kBarHeight, width(), grid::kBarHeight};
}

QRect UsageBarWidget::barRoom() const {
    // Alignment to whole pixels may move the bar up by this much.
    return barRect().adjusted(0, -1, 0, 0);
}

// Repaints only the part that the end of the bar has passed over.
void UsageBarWidget::barMoved() {
    const double from = std::min(drawnFraction_, fraction_.value());
    const double to = std::max(drawnFraction_, fraction_.value());
    drawnFraction_ = fraction_.value();
    const QRect bar = barRoom();
    const int left = qFloor(from * bar.width() - 2 * grid::kBarCorner) - 1;
    const int right = qCeil(to * bar.width() + 2 * grid::kBarCorner) + 1;
    update(bar.intersected(QRect(left, bar.top(), right - left, bar.height())));
}

int UsageBarWidget::heightFor(int) const {
    return rowHeight(rowContent(value(), theme()), theme()) + grid::kBarGap + grid::kBarHeight;
}

void UsageBarWidget::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    if (!barRoom().contains(event->rect())) {
        const RowContent row = rowContent(value(), theme());
        paintRow(painter, row, theme(), QRect(0, 0, width(), rowHeight(row, theme())));
    }
    paintBar(painter, fraction_.value(), theme().color(value().tint), theme(), barRect());
}

QString UsageBarWidget::cutTextAt(const QPoint&) const {
    return cutText(rowContent(value(), theme()), theme(), width());
}

}  // namespace tarnwick::qt
