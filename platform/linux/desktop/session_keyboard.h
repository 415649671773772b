// Shortcuts and key names of the session at hand.
#pragma once

#include <QDBusConnection>
#include <memory>

#include "platform/dispatch.h"
#include "platform/hot_keys.h"
#include "platform/linux/desktop/keysym_layout.h"

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

/// For the application object's display and the session's bus. `layout` and `dispatch` outlive the
/// hot keys. Main thread.
std::unique_ptr<HotKeys> makeHotKeys(QDBusConnection bus, KeysymLayout& layout, Dispatch& dispatch);

/// For the application object's display. Main thread.
std::unique_ptr<KeysymLayout> makeKeyboardLayout();

}  // namespace tarnwick::platform
