// A keyboard layout that also knows its keys as XKB does.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <xkbcommon/xkbcommon.h>

#include "platform/keyboard_layout.h"

namespace tarnwick::platform {

/// Main thread.
class KeysymLayout : public KeyboardLayout {
 public:
    /// What a key produces without modifiers, as it is: a dead key is dead, a small letter small.
    /// XKB_KEY_NoSymbol without layout data and for a key that produces nothing, or several things
    /// at once.
    virtual xkb_keysym_t keysym(std::uint16_t virtualKeyCode) = 0;
};

/// For a session that does not tell its layout.
class NullKeysymLayout final : public KeysymLayout {
 public:
    std::optional<std::string> displayText(std::uint16_t) override { return std::nullopt; }
    xkb_keysym_t keysym(std::uint16_t) override { return XKB_KEY_NoSymbol; }
};

}  // namespace tarnwick::platform
