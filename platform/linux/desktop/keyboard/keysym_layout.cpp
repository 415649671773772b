// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/keysym_layout.h"

namespace tarnwick::platform {

std::optional<std::string> KeysymLayout::displayText(std::uint16_t virtualKeyCode) {
    const KeymapInUse used = keymapInUse();
    return used.keymap ? keyText(*used.keymap, used.layout, virtualKeyCode) : std::nullopt;
}

xkb_keysym_t KeysymLayout::keysym(std::uint32_t virtualKeyCode) {
    KeymapInUse used = keymapInUse();
    if (!used.keymap) {
        used = {installedKeymap("us"), 0};
    }
    return used.keymap ? keyKeysym(*used.keymap, used.layout, virtualKeyCode) : XKB_KEY_NoSymbol;
}

}  // namespace tarnwick::platform
