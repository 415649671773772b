// SPDX-License-Identifier: MIT
#include "ui/qt/ring_widget.h"

#include <QPainter>
#include <utility>

#include "ui/qt/grid.h"

namespace tarnwick::qt {

RingWidget::RingWidget(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(theme) {
    setObjectName("focusRing");
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void RingWidget::surround(const QRect& place, int corner) {
    constexpr int margin = grid::kFocusGap + grid::kFocusRing;
    if (std::exchange(corner_, corner + margin) != corner + margin) {
        update();
    }
    // The toolkit repaints the ring if one of these calls changes something.
    setGeometry(place.adjusted(-margin, -margin, margin, margin));
    raise();
    show();
}

void RingWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme_.color(ColorRole::accent), grid::kFocusRing));
    constexpr qreal inset = grid::kFocusRing / 2.0;
    const qreal radius = corner_ - inset;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius, radius);
}

}  // namespace tarnwick::qt
