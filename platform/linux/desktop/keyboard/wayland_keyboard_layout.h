// SPDX-License-Identifier: MIT
// Names of keys in the layout of a Wayland compositor.
#pragma once

#include <memory>

#include "platform/linux/desktop/keyboard/key_text.h"
#include "platform/linux/desktop/keyboard/keysym_layout.h"

struct wl_display;

namespace tarnwick::platform {

/// Listens to the keyboard of the session's seat, on the toolkit's connection but apart from the
/// toolkit. The compositor sends its keymap at once. It sends the layout in use whenever a window
/// of the program gets the focus; until then the first layout is assumed. Main thread.
class WaylandKeyboardLayout : public KeysymLayout {
 public:
    /// Waits for the compositor's answer, so that the keymap is there from the start. `display` may
    /// be null if there is no compositor. Requires: `display` outlives this object.
    explicit WaylandKeyboardLayout(wl_display* display);
    ~WaylandKeyboardLayout() override;

    /// Handles the events that have arrived, so that they do not pile up. Costs next to nothing if
    /// there are none. Never waits.
    void takeEvents();

 private:
    class Keyboard;

    KeymapInUse keymapInUse() override;

    std::unique_ptr<Keyboard> keyboard_;
};

}  // namespace tarnwick::platform
