// A keyboard layout that also knows its keys as XKB does.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/keyboard_layout.h"
#include "platform/linux/desktop/keyboard/key_text.h"

namespace tarnwick::platform {

/// The keyboard of the moment.
struct KeymapInUse {
    /// Null without one.
    XkbKeymap keymap{};
    /// Which of the keymap's layouts, from 0.
    xkb_layout_index_t layout = 0;
};

/// Main thread.
class KeysymLayout : public KeyboardLayout {
 public:
    std::optional<std::string> displayText(std::uint16_t virtualKeyCode) final;
    /// By what desktops know the key, see keyKeysym(); on a US keyboard while there is none.
    xkb_keysym_t keysym(std::uint32_t virtualKeyCode);

 private:
    virtual KeymapInUse keymapInUse() = 0;
};

/// For a session that does not tell its layout.
class NullKeysymLayout final : public KeysymLayout {
    KeymapInUse keymapInUse() override { return {}; }
};

}  // namespace tarnwick::platform
