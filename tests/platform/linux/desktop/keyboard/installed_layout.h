// SPDX-License-Identifier: MIT
// A keyboard with layouts as they are installed on the machine.
#pragma once

#include "platform/linux/desktop/keyboard/keysym_layout.h"

namespace tarnwick::platform::testing {

class InstalledLayout final : public KeysymLayout {
 public:
    explicit InstalledLayout(const char* layouts, xkb_layout_index_t inUse = 0)
        : keymap_(installedKeymap(layouts)), inUse_(inUse) {}

 private:
    KeymapInUse keymapInUse() override {
        return {XkbKeymap(keymap_ ? xkb_keymap_ref(keymap_.get()) : nullptr), inUse_};
    }

    XkbKeymap keymap_;
    xkb_layout_index_t inUse_;
};

}  // namespace tarnwick::platform::testing
