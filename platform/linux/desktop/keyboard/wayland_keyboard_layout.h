// Names of keys in the layout of a Wayland compositor.
#pragma once

#include <memory>

#include "platform/linux/desktop/keyboard/key_text.h"
#include "platform/linux/desktop/keyboard/keysym_layout.h"

struct wl_display;

namespace tarnwick::platform {

/// Listens to the keyboard of the session's seat beside the toolkit, on the same connection: the
/// compositor sends its keymap at once and, whenever a window of the program gets the focus,
/// which of the layouts is in use. Until then it is the first one. Main thread.
class WaylandKeyboardLayout : public KeysymLayout {
 public:
    /// Waits for the compositor to answer, so that the keymap is there from the beginning.
    /// `display` outlives the layout; null without a compositor.
    explicit WaylandKeyboardLayout(wl_display* display);
    ~WaylandKeyboardLayout() override;

    /// Takes in what has arrived, so that it does not pile up. Costs next to nothing when there is
    /// nothing; never waits.
    void takeEvents();

 private:
    class Keyboard;

    KeymapInUse keymapInUse() override;

    std::unique_ptr<Keyboard> keyboard_;
};

}  // namespace tarnwick::platform
