// SPDX-License-Identifier: MIT
#include "ui/qt/settings_card_widget.h"

#include <QEvent>
#include <QPainter>
#include <QVBoxLayout>

#include "ui/qt/settings_grid.h"
#include "ui/qt/tool_tip.h"

namespace tarnwick::qt {

void paintCard(QPainter& painter, const QRectF& rect, const Theme& theme, bool isSelected,
               bool isHovered) {
    const qreal outline =
        isSelected ? settings_grid::kSelectedOutline : settings_grid::kCardOutline;
    const QRectF inner = rect.adjusted(outline / 2, outline / 2, -outline / 2, -outline / 2);
    const qreal corner = settings_grid::kCardCorner - outline / 2;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.color(ColorRole::card));
    painter.drawRoundedRect(inner, corner, corner);
    painter.setBrush(isHovered ? QBrush(theme.color(ColorRole::control)) : QBrush(Qt::NoBrush));
    painter.setPen(
        QPen(theme.color(isSelected ? ColorRole::accent : ColorRole::hairline), outline));
    painter.drawRoundedRect(inner, corner, corner);
}

SettingsCardWidget::SettingsCardWidget(const Theme& theme, QWidget* parent)
    : QWidget(parent), theme_(theme), column_(new QVBoxLayout(this)) {
    constexpr int padding = settings_grid::kCardPadding;
    column_->setContentsMargins(padding, padding, padding, padding);
    column_->setSpacing(settings_grid::kPartGap);
}

bool SettingsCardWidget::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || toolTip_.isEmpty()) {
        return QWidget::event(event);
    }
    showToolTip(*this, rect(), toolTip_, theme_);
    return true;
}

void SettingsCardWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintCard(painter, rect(), theme_, false, false);
}

}  // namespace tarnwick::qt
