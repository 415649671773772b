#include "ui/qt/double_click_guard.h"

#include <QApplication>
#include <QStyleHints>
#include <algorithm>

namespace tarnwick::qt {

DoubleClickGuard::DoubleClickGuard(const QWidget& window) : window_(window) {
    // Buttons take their presses themselves, so nobody else would hear of all of them.
    qApp->installEventFilter(this);
}

bool DoubleClickGuard::eventFilter(QObject* receiver, QEvent* event) {
    // The second press comes as a double click wherever the toolkit has noticed the first one.
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
    // What the first one hit may be gone.
    if (!last_ || (press.hit != nullptr && press.hit == last_->hit)) {
        return false;
    }
    const QPoint way = press.place - last_->place;
    return press.time - last_->time < static_cast<quint64>(QApplication::doubleClickInterval()) &&
           std::max(qAbs(way.x()), qAbs(way.y())) <=
               QGuiApplication::styleHints()->mouseDoubleClickDistance();
}

}  // namespace tarnwick::qt
