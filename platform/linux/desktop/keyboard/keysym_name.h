// What the desktop calls a key.
#pragma once

#include <cstdint>
#include <string>

#include "platform/linux/desktop/keyboard/keysym_layout.h"

namespace tarnwick::platform {

/// XKB name of what a key produces without modifiers, in the layout of the moment, such as "l",
/// "F5", "KP_1" or "dead_acute". A key whose character is of no Latin script has the name that it
/// has on a US keyboard, by which desktops find it in every layout. Empty for a key that has no
/// name.
std::string keysymName(std::uint32_t virtualKeyCode, KeysymLayout& layout);

}  // namespace tarnwick::platform
