// Names of keys in the layout of an X server.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <xcb/xcb.h>

#include "platform/linux/desktop/keyboard/keysym_layout.h"

namespace tarnwick::platform {

/// Asks the server for its keymap whenever a name is wanted, so that it is the current one: names
/// are wanted rarely, and a keymap is large to keep. A few round trips each. Main thread.
class X11KeyboardLayout final : public KeysymLayout {
 public:
    /// `connection` outlives the layout.
    explicit X11KeyboardLayout(xcb_connection_t* connection);

    std::optional<std::string> displayText(std::uint16_t virtualKeyCode) override;
    xkb_keysym_t keysym(std::uint16_t virtualKeyCode) override;

 private:
    /// Calls `use` with the keymap of now and its layout in use, if the server tells them.
    void useKeymap(const std::function<void(xkb_keymap&, xkb_layout_index_t)>& use);

    xcb_connection_t* connection_;
    /// The server describes its keyboard.
    bool hasKeymap_;
};

}  // namespace tarnwick::platform
