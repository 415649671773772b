// SPDX-License-Identifier: MIT
#include "ui/qt/settings_focus_ring.h"

#include <QFocusEvent>
#include <QPainter>

#include "ui/qt/grid.h"

namespace tarnwick::qt {

namespace {

bool isByKey(Qt::FocusReason reason) {
    return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
           reason == Qt::ShortcutFocusReason;
}

}  // namespace

SettingsFocusRing::SettingsFocusRing(const Theme& theme, QWidget* parent)
    : QWidget(parent), theme_(theme) {
    setObjectName("focusRing");
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void SettingsFocusRing::watchControls() {
    for (QWidget* widget : parentWidget()->findChildren<QWidget*>()) {
        if (dynamic_cast<FocusShape*>(widget) != nullptr) {
            // Also its ancestors: if one of them moves, the control moves with it.
            for (QWidget* each = widget; each != parentWidget(); each = each->parentWidget()) {
                each->removeEventFilter(this);
                each->installEventFilter(this);
            }
        }
    }
}

bool SettingsFocusRing::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::FocusIn: {
            const auto reason = static_cast<QFocusEvent*>(event)->reason();
            const bool stays =
                reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason;
            if (!stays) {
                control_ = isByKey(reason) ? static_cast<QWidget*>(watched) : nullptr;
            }
            follow();
            break;
        }
        case QEvent::FocusOut:
            hide();
            break;
        case QEvent::Move:
        case QEvent::Resize:
            if (control_ != nullptr &&
                (watched == control_ || static_cast<QWidget*>(watched)->isAncestorOf(control_))) {
                follow();
            }
            break;
        default:
            break;
    }
    return QWidget::eventFilter(watched, event);
}

void SettingsFocusRing::follow() {
    const auto* shape = dynamic_cast<FocusShape*>(control_.data());
    if (shape == nullptr || !control_->hasFocus()) {
        hide();
        return;
    }
    constexpr int margin = grid::kFocusGap + grid::kFocusRing;
    const QRect rect = shape->focusRect();
    corner_ = shape->focusCorner() + margin;
    setGeometry(QRect(control_->mapTo(parentWidget(), rect.topLeft()), rect.size())
                    .adjusted(-margin, -margin, margin, margin));
    raise();
    show();
    update();
}

void SettingsFocusRing::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme_.color(ColorRole::accent), grid::kFocusRing));
    constexpr qreal inset = grid::kFocusRing / 2.0;
    const qreal radius = corner_ - inset;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius, radius);
}

}  // namespace tarnwick::qt
