// SPDX-License-Identifier: MIT
#include "ui/qt/focus_ring.h"

#include <QApplication>
#include <QPainter>
#include <utility>

#include "ui/qt/button_widget.h"
#include "ui/qt/grid.h"

namespace tarnwick::qt {

FocusRing::FocusRing(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(theme) {
    setObjectName("focusRing");
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
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
    constexpr int margin = grid::kFocusGap + grid::kFocusRing;
    if (std::exchange(corner_, button->corner() + margin) != button->corner() + margin) {
        update();
    }
    // The toolkit repaints the ring if one of these calls changes something.
    setGeometry(QRect(button->mapTo(parentWidget(), QPoint()), button->size())
                    .adjusted(-margin, -margin, margin, margin));
    raise();
    show();
}

void FocusRing::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme_.color(ColorRole::accent), grid::kFocusRing));
    constexpr qreal inset = grid::kFocusRing / 2.0;
    const qreal radius = corner_ - inset;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius, radius);
}

}  // namespace tarnwick::qt
