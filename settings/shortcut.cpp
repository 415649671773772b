// SPDX-License-Identifier: MIT
#include "settings/shortcut.h"

#include <cstdlib>

#include "settings/key_name.h"

namespace tarnwick {
namespace {

constexpr const char* kNeedsCommand = "Shortcut must include Command.";
constexpr const char* kNeedsKey = "Shortcut must include a non-modifier key.";
constexpr const char* kTooMany = "Use Command by itself or with one of Shift, Option, or Control.";

/// The bits that count.
std::int64_t masked(std::int64_t flags) {
    if (flags < 0) {
        std::abort();
    }
    return flags & modifier_flag::kMask;
}

}  // namespace

int extraModifierCount(std::int64_t flags) {
    const std::int64_t held = masked(flags);
    int count = 0;
    for (const std::int64_t flag :
         {modifier_flag::kShift, modifier_flag::kOption, modifier_flag::kControl}) {
        count += (held & flag) != 0 ? 1 : 0;
    }
    return count;
}

ShortcutValidation validateShortcut(std::int64_t keyCode, std::int64_t modifiers) {
    const std::int64_t held = masked(modifiers);
    if (keyCode < 0 && held == 0) {
        return ShortcutValidation::empty;
    }
    if ((held & modifier_flag::kCommand) == 0) {
        return ShortcutValidation::missingCommand;
    }
    if (extraModifierCount(held) >= 2) {
        return ShortcutValidation::tooManyModifiers;
    }
    return keyCode < 0 ? ShortcutValidation::missingKey : ShortcutValidation::valid;
}

bool isValidShortcut(std::int64_t keyCode, std::int64_t modifiers) {
    return validateShortcut(keyCode, modifiers) == ShortcutValidation::valid;
}

std::optional<std::string> modifierValidationMessage(std::int64_t flags) {
    const std::int64_t held = masked(flags);
    if (held == 0) {
        return std::nullopt;
    }
    if ((held & modifier_flag::kCommand) == 0) {
        return kNeedsCommand;
    }
    if (extraModifierCount(held) >= 2) {
        return kTooMany;
    }
    return std::nullopt;
}

std::optional<std::string> rejectionMessage(ShortcutValidation verdict) {
    switch (verdict) {
        case ShortcutValidation::missingCommand:
            return kNeedsCommand;
        case ShortcutValidation::missingKey:
            return kNeedsKey;
        case ShortcutValidation::tooManyModifiers:
            return kTooMany;
        case ShortcutValidation::valid:
        case ShortcutValidation::empty:
            break;
    }
    return std::nullopt;
}

std::string shortcutDisplayString(std::int64_t keyCode, std::int64_t modifiers,
                                  platform::KeyboardLayout& layout) {
    if (!isValidShortcut(keyCode, modifiers)) {
        return "None";
    }
    std::string text;
    if ((modifiers & modifier_flag::kControl) != 0) {
        text += "\u2303";
    }
    if ((modifiers & modifier_flag::kOption) != 0) {
        text += "\u2325";
    }
    if ((modifiers & modifier_flag::kShift) != 0) {
        text += "\u21E7";
    }
    return text + "\u2318" + keyName(keyCode, layout);
}

}  // namespace tarnwick
