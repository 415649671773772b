// SPDX-License-Identifier: MIT
// Names of keys in the layout of an X server.
#pragma once

#include <xcb/xcb.h>

#include "platform/linux/desktop/keyboard/keysym_layout.h"

namespace tarnwick::platform {

/// Asks the server for its current keymap for each name, because names are needed rarely and a
/// keymap is large to keep. Each takes a few round trips. Main thread.
class X11KeyboardLayout final : public KeysymLayout {
 public:
    /// Requires: `connection` outlives this object.
    explicit X11KeyboardLayout(xcb_connection_t* connection);

 private:
    KeymapInUse keymapInUse() override;

    xcb_connection_t* connection_;
    /// Whether the server describes its keyboard.
    bool hasKeymap_;
};

}  // namespace tarnwick::platform
