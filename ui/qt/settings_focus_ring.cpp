// SPDX-License-Identifier: MIT
#include "ui/qt/settings_focus_ring.h"

#include <QFocusEvent>

namespace tarnwick::qt {

namespace {

bool isByKey(Qt::FocusReason reason) {
    return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
           reason == Qt::ShortcutFocusReason;
}

}  // namespace

SettingsFocusRing::SettingsFocusRing(const Theme& theme, QWidget* parent)
    : RingWidget(theme, parent) {}

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
    const QRect rect = shape->focusRect();
    surround(QRect(control_->mapTo(parentWidget(), rect.topLeft()), rect.size()),
             shape->focusCorner());
}

}  // namespace tarnwick::qt
