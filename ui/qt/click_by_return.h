// Return as a second space bar.
#pragma once

#include <QAbstractButton>
#include <QKeyEvent>

namespace tarnwick::qt {

/// Return presses a button as the space bar does, once however long it is held. False for other
/// keys.
bool clickByReturn(QAbstractButton& button, const QKeyEvent& event);

}  // namespace tarnwick::qt
