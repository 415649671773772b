// SPDX-License-Identifier: MIT
// Shortcuts and key names of the session at hand.
#pragma once

#include <QDBusConnection>
#include <memory>
#include <string_view>

#include "platform/dispatch.h"
#include "platform/hot_keys.h"
#include "platform/linux/desktop/keyboard/keysym_layout.h"

namespace tarnwick::platform {

/// Whether a compositor controls the keys, for the case that the program itself does not talk to
/// it. The arguments are the values of XDG_SESSION_TYPE and WAYLAND_DISPLAY, empty if unset. The
/// session type from the login manager takes precedence: the name of a compositor may be left over
/// from another session.
bool isWaylandSession(std::string_view sessionType, std::string_view waylandDisplay);

/// Whether a compositor controls keys and pointer of the running application's session, also beside
/// an X server that the application talks to.
bool isUnderCompositor();

/// Makes hot keys from grabs on the application's X server; if a compositor controls the keys, from
/// the portal on the session's bus. Without either, every registration fails. Main thread.
/// Requires: `layout` and `dispatch` outlive the hot keys.
std::unique_ptr<HotKeys> makeHotKeys(QDBusConnection bus, KeysymLayout& layout, Dispatch& dispatch);

/// Makes the keyboard layout of the application's display. Main thread.
std::unique_ptr<KeysymLayout> makeKeyboardLayout();

}  // namespace tarnwick::platform
