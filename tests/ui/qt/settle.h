// Lets an application without a display catch up.
#pragma once

#include <QApplication>

namespace tarnwick::qt {

/// Runs the event loop until showing, laying out, painting and deleting have followed from what was
/// done: each may take a turn of its own.
inline void settle() {
    for (int turn = 0; turn < 8; ++turn) {
        QApplication::processEvents();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

}  // namespace tarnwick::qt
