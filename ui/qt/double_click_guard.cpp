// SPDX-License-Identifier: MIT
#include "ui/qt/double_click_guard.h"

#include <QApplication>
#include <QStyleHints>
#include <algorithm>

namespace tarnwick::qt {

DoubleClickGuard::DoubleClickGuard(const QWidget& window) : window_(window) {
    // On the application, because buttons accept their presses and the window would not see them.
    qApp->installEventFilter(this);
}

bool DoubleClickGuard::eventFilter(QObject* receiver, QEvent* event) {
    // The second press arrives as a double click if the toolkit noticed the first one.
    if (event->type() != QEvent::MouseButtonPress && event->type() != QEvent::MouseButtonDblClick) {
        return false;
    }
    const auto* widget = qobject_cast<QWidget*>(receiver);
    if (widget == nullptr || widget->window() != &window_) {
        return false;
    }
    const auto* mouse = static_cast<QMouseEvent*>(event);
    const QPoint place = mouse->globalPosition().toPoint();
    const Press press{window_.childAt(window_.mapFromGlobal(place)), place, mouse->timestamp()};
    if (hasMissed(press)) {
        return true;
    }
    last_ = press;
    return false;
}

bool DoubleClickGuard::hasMissed(const Press& press) const {
    // The widget that the first press hit may be gone.
    if (!last_ || (press.hit != nullptr && press.hit == last_->hit)) {
        return false;
    }
    const QPoint way = press.place - last_->place;
    return press.time - last_->time < static_cast<quint64>(QApplication::doubleClickInterval()) &&
           std::max(qAbs(way.x()), qAbs(way.y())) <=
               QGuiApplication::styleHints()->mouseDoubleClickDistance();
}

}  // namespace tarnwick::qt
