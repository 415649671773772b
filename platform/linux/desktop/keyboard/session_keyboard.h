// Shortcuts and key names of the session at hand.
#pragma once

#include <QDBusConnection>
#include <memory>
#include <string_view>

#include "platform/dispatch.h"
#include "platform/hot_keys.h"
#include "platform/linux/desktop/keyboard/keysym_layout.h"

namespace tarnwick::platform {

/// Who tells of a shortcut's presses.
enum class HotKeySource {
    /// The X server, by grabs.
    x11,
    /// The desktop's portal.
    portal,
    none,
};

/// `hasX11`: the program talks to an X server. `isWayland`: the session is one of Wayland. An X
/// server beside a Wayland compositor grants grabs, but knows of no key that is pressed in a
/// window of the compositor: there only the portal can tell.
HotKeySource hotKeySource(bool hasX11, bool isWayland);

/// Whether a compositor has the keys, where the program itself does not talk to it. The two are
/// XDG_SESSION_TYPE and WAYLAND_DISPLAY, empty when not set. What the login manager says of the
/// session counts more than the name of a compositor, which may be left over from another session.
bool isWaylandSession(std::string_view sessionType, std::string_view waylandDisplay);

/// For the application object's display and the session's bus. `layout` and `dispatch` outlive the
/// hot keys. Main thread.
std::unique_ptr<HotKeys> makeHotKeys(QDBusConnection bus, KeysymLayout& layout, Dispatch& dispatch);

/// For the application object's display. Main thread.
std::unique_ptr<KeysymLayout> makeKeyboardLayout();

}  // namespace tarnwick::platform
