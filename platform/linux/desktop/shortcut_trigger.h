// Combinations of keys in the words of desktops: as a program asks for them and as people read
// them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/keyboard_layout.h"

namespace tarnwick::platform {

/// XKB name of what a key produces in `layout` without modifiers, such as "l", "F5" or "KP_1". A
/// key whose character is of no Latin script has the name that it has on a US keyboard, by which
/// desktops find it in every layout. Empty for a key that has no name.
std::string keysymName(std::uint32_t virtualKeyCode, KeyboardLayout& layout);

/// The combination as the shortcuts specification of desktops writes it, such as "SHIFT+LOGO+l".
/// `modifiers` is a sum of hot_key_modifier bits.
std::string triggerText(std::uint32_t modifiers, std::string_view keysymName);

enum class TriggerMatch {
    /// It is the combination.
    same,
    /// It is another one.
    other,
    /// It cannot be told.
    unclear,
};

/// Whether a text that a desktop shows to people, such as "Meta+L", "<Shift><Super>l" or several
/// of them, names the combination. In the user's language it is mostly unclear.
TriggerMatch matchTrigger(std::string_view description, std::uint32_t modifiers,
                          std::string_view keysymName);

}  // namespace tarnwick::platform
