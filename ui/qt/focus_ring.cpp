// SPDX-License-Identifier: MIT
#include "ui/qt/focus_ring.h"

#include <QApplication>

#include "ui/qt/button_widget.h"

namespace tarnwick::qt {

FocusRing::FocusRing(const Theme& theme, QWidget* parent) : RingWidget(theme, parent) {
    connect(qApp, &QApplication::focusChanged, this, [this] { follow(); });
}

const ButtonWidget* FocusRing::focusedButton() const {
    const auto* button = qobject_cast<ButtonWidget*>(QApplication::focusWidget());
    return button != nullptr && parentWidget()->isAncestorOf(button) && button->showsFocus()
               ? button
               : nullptr;
}

void FocusRing::follow() {
    const ButtonWidget* button = focusedButton();
    if (button == nullptr) {
        hide();
        return;
    }
    surround(QRect(button->mapTo(parentWidget(), QPoint()), button->size()), button->corner());
}

}  // namespace tarnwick::qt
