// SPDX-License-Identifier: MIT
// Lets an application without a display finish its pending work.
#pragma once

#include <QApplication>

namespace tarnwick::qt {

/// Runs the event loop until showing, layout, painting and deletion are done: each of them may take
/// a turn of its own.
inline void settle() {
    for (int turn = 0; turn < 8; ++turn) {
        QApplication::processEvents();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

}  // namespace tarnwick::qt
