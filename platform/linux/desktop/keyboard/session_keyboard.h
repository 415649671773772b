// Shortcuts and key names of the session at hand.
#pragma once

#include <QDBusConnection>
#include <memory>
#include <string_view>

#include "platform/dispatch.h"
#include "platform/hot_keys.h"
#include "platform/linux/desktop/keyboard/keysym_layout.h"

namespace tarnwick::platform {

/// Whether a compositor has the keys, where the program itself does not talk to it. The two are
/// XDG_SESSION_TYPE and WAYLAND_DISPLAY, empty when not set. What the login manager says of the
/// session counts more than the name of a compositor, which may be left over from another session.
bool isWaylandSession(std::string_view sessionType, std::string_view waylandDisplay);

/// By grabs of the application object's X server or, where a compositor has the keys, by the
/// portal on the session's bus; without either nothing registers. `layout` and `dispatch` outlive
/// the hot keys. Main thread.
std::unique_ptr<HotKeys> makeHotKeys(QDBusConnection bus, KeysymLayout& layout, Dispatch& dispatch);

/// For the application object's display. Main thread.
std::unique_ptr<KeysymLayout> makeKeyboardLayout();

}  // namespace tarnwick::platform
