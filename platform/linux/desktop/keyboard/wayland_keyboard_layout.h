// Names of keys in the layout of a Wayland compositor.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

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

    std::optional<std::string> displayText(std::uint16_t virtualKeyCode) override;
    xkb_keysym_t keysym(std::uint16_t virtualKeyCode) override;

    /// Takes in what has arrived, so that it does not pile up. Costs next to nothing when there is
    /// nothing; never waits.
    void takeEvents();

 private:
    class Keyboard;

    /// The keymap of now; null when there is none.
    XkbKeymap compileKeymap();

    std::unique_ptr<Keyboard> keyboard_;
};

}  // namespace tarnwick::platform
