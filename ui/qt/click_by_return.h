// SPDX-License-Identifier: MIT
// Lets Return press buttons as the space bar does.
#pragma once

#include <QAbstractButton>
#include <QKeyEvent>

namespace tarnwick::qt {

/// Return presses a button as the space bar does; holding it presses only once. False for other
/// keys.
bool clickByReturn(QAbstractButton& button, const QKeyEvent& event);

}  // namespace tarnwick::qt
