// Names of keys in the layout of an X server.
#pragma once

#include <xcb/xcb.h>

#include "platform/linux/desktop/keyboard/keysym_layout.h"

namespace tarnwick::platform {

/// Asks the server for its keymap whenever a name is wanted, so that it is the current one: names
/// are wanted rarely, and a keymap is large to keep. A few round trips each. Main thread.
class X11KeyboardLayout final : public KeysymLayout {
 public:
    /// `connection` outlives the layout.
    explicit X11KeyboardLayout(xcb_connection_t* connection);

 private:
    KeymapInUse keymapInUse() override;

    xcb_connection_t* connection_;
    /// The server describes its keyboard.
    bool hasKeymap_;
};

}  // namespace tarnwick::platform
