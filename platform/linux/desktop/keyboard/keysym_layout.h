// SPDX-License-Identifier: MIT
// A keyboard layout that also gives the XKB keysyms of its keys.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/keyboard_layout.h"
#include "platform/linux/desktop/keyboard/key_text.h"

namespace tarnwick::platform {

/// The keymap and layout in use now.
struct KeymapInUse {
    /// Null if there is no keymap.
    XkbKeymap keymap{};
    /// Number of the keymap's layout in use, from 0.
    xkb_layout_index_t layout = 0;
};

/// Main thread.
class KeysymLayout : public KeyboardLayout {
 public:
    std::optional<std::string> displayText(std::uint16_t virtualKeyCode) final;
    /// The keysym by which desktops know the key, see keyKeysym(). Without a keymap, that of a US
    /// keyboard.
    xkb_keysym_t keysym(std::uint32_t virtualKeyCode);

 private:
    virtual KeymapInUse keymapInUse() = 0;
};

/// For a session that does not tell its layout.
class NullKeysymLayout final : public KeysymLayout {
    KeymapInUse keymapInUse() override { return {}; }
};

}  // namespace tarnwick::platform
