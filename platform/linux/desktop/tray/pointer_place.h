// Where on the screen the pointer is, as the place of something that was just clicked.
#pragma once

#include <QRect>
#include <optional>

namespace tarnwick::platform {

/// `window`, which the pointer is in, as the place of an item under the pointer: where the window
/// is a bar along the screen's top or bottom, the place is as high as the bar, so that what opens
/// beside it leaves the bar free; otherwise it is the pointer's alone. All in the same coordinates.
QRect placeInWindow(const QPoint& pointer, const QRect& window);

/// The place under the pointer in the screen's coordinates; none where a program does not see the
/// pointer (Wayland). Asks the X server, twice. Main thread.
std::optional<QRect> placeUnderPointer();

}  // namespace tarnwick::platform
