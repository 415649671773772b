// The pointer of a screen that nobody sees.
#pragma once

#include <QApplication>
#include <QCursor>
#include <QEnterEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QWindow>

#include "tests/ui/qt/settle.h"

namespace tarnwick::qt {

/// On the screen, and on no window of a test.
inline constexpr QPoint kElsewhere(790, 790);

/// Moves the pointer to a place on the screen, with all that windows hear of it. The platform
/// without a display tells them, too, but only where a point is a pixel does it tell the right one.
inline void movePointer(const QPoint& place) {
    static QPointer<QWindow> last;
    QCursor::setPos(place);
    settle();
    QWindow* window = QGuiApplication::topLevelAt(place);
    if (last != nullptr && last != window) {
        QEvent leave(QEvent::Leave);
        QApplication::sendEvent(last, &leave);
    }
    if (window != nullptr) {
        const QPointF local = place - window->position();
        QEnterEvent enter(local, local, place);
        QApplication::sendEvent(window, &enter);
        QMouseEvent move(QEvent::MouseMove, local, place, Qt::NoButton, Qt::NoButton,
                         Qt::NoModifier);
        QApplication::sendEvent(window, &move);
    }
    last = window;
    settle();
}

}  // namespace tarnwick::qt
