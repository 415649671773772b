// SPDX-License-Identifier: MIT
// Where on the screen the pointer is, as the place of something that was just clicked.
#pragma once

#include <QRect>
#include <optional>

namespace tarnwick::platform {

/// The place of an item under the pointer in `window`. If the window is a bar along the top or
/// bottom of the screen, the place is as high as the bar, so that a panel beside it does not cover
/// the bar; otherwise it is only the pointer's point. All in the same coordinates.
QRect placeInWindow(const QPoint& pointer, const QRect& window);

/// The place under the pointer in the screen's coordinates; absent if a program cannot see the
/// pointer (Wayland). Takes two round trips to the X server. Main thread.
std::optional<QRect> placeUnderPointer();

}  // namespace tarnwick::platform
