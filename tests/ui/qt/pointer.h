// SPDX-License-Identifier: MIT
// The pointer of a screen without a display.
#pragma once

#include <QApplication>
#include <QCursor>
#include <QEnterEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QWindow>

#include "tests/ui/qt/settle.h"

namespace tarnwick::qt {

/// A place on the screen where no test has a window.
inline constexpr QPoint kElsewhere(790, 790);

/// Moves the pointer to a place on the screen and sends the windows all events of that move. The
/// platform without a display sends them, too, but to the right place only if a point is a pixel.
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
