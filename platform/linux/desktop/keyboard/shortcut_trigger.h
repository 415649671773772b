// Combinations of keys in the words of desktops: as a program asks for them and as people read
// them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarnwick::platform {

/// The combination as the desktops have agreed to write it, such as "SHIFT+LOGO+l".
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
