// SPDX-License-Identifier: MIT
// Which key combinations may be the global shortcut, and the text that shows one.
//
// A shortcut is a virtual key code of the platform keyboard (-1 for none) and modifier flags. Only
// four bits of the flags count; all others are ignored. Negative flags are a fatal error.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/keyboard_layout.h"

namespace tarnwick {

/// Device-independent modifier flags, as they are stored.
namespace modifier_flag {
inline constexpr std::int64_t kShift = 0x20000;
inline constexpr std::int64_t kControl = 0x40000;
inline constexpr std::int64_t kOption = 0x80000;
inline constexpr std::int64_t kCommand = 0x100000;
/// Those that count in a shortcut.
inline constexpr std::int64_t kMask = kShift | kControl | kOption | kCommand;
}  // namespace modifier_flag

/// The verdict on a key code and flags as a shortcut.
enum class ShortcutValidation {
    /// Some modifier, but not Command.
    missingCommand = 0,
    /// The modifiers are allowed, but there is no key.
    missingKey = 1,
    /// Command with two or more of Shift, Option and Control.
    tooManyModifiers = 2,
    valid = 3,
    /// Neither a key nor a modifier.
    empty = 4,
};

/// How many of Shift, Option and Control are set.
int extraModifierCount(std::int64_t flags);

ShortcutValidation validateShortcut(std::int64_t keyCode, std::int64_t modifiers);
bool isValidShortcut(std::int64_t keyCode, std::int64_t modifiers);

/// What to tell a user who holds these modifiers and has not pressed a key yet; absent while they
/// may still become a shortcut.
std::optional<std::string> modifierValidationMessage(std::int64_t flags);
/// What to tell a user about a key press with this verdict; absent for `valid` and `empty`.
std::optional<std::string> rejectionMessage(ShortcutValidation verdict);

/// The symbols of the modifiers, then the name of the key: "⇧⌘K"; "None" if it is not a valid
/// shortcut.
std::string shortcutDisplayString(std::int64_t keyCode, std::int64_t modifiers,
                                  platform::KeyboardLayout& layout);

}  // namespace tarnwick
