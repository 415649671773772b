// SPDX-License-Identifier: MIT
// The part of the settings in which the global shortcut is recorded.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/records/tint.h"
#include "platform/keyboard_layout.h"
#include "settings/shortcut_field.h"
#include "settings/user_settings.h"

namespace tarnwick {

/// A sentence with a symbol before it.
struct StatusLine {
    /// Symbol name.
    std::string_view icon;
    Tint tint = Tint::gray;
    std::string text;

    bool operator==(const StatusLine&) const = default;
};

struct ShortcutEditor {
    static constexpr std::string_view kTitle = "Global Shortcut";
    static constexpr std::string_view kCaption =
        "Shortcut must include Command. Examples: ⌘ + L, ⌘ + Shift + L, ⌘ + Option + L, or ⌘ + "
        "Control + L.";
    static constexpr std::string_view kClear = "Clear";
    /// Width of the field, points.
    static constexpr int kFieldWidth = 220;

    /// What the field shows.
    ShortcutFieldText field;
    /// A tip about the keys on this system. Empty for none.
    std::string tip;
    /// Whether there is a shortcut to clear.
    bool hasClear = false;
    /// From top to bottom.
    std::vector<StatusLine> lines;

    bool operator==(const ShortcutEditor&) const = default;
};

/// What is known about the shortcut when the lines below its field are written.
struct ShortcutStatus {
    /// Why the last key press was rejected.
    std::optional<std::string> validationMessage;
    RegistrationState registrationState = RegistrationState::inactive;
    // As stored.
    std::int64_t keyCode = -1;
    std::int64_t modifiers = 0;
    /// What the desktop calls the keys, where its user has chosen others; else empty.
    std::string otherKeys{};
};

/// The reason for a rejected key press, then the outcome of the registration. Each line is there
/// only if it applies.
std::vector<StatusLine> statusLines(const ShortcutStatus& status, platform::KeyboardLayout& layout);

}  // namespace tarnwick
