// The keyboard layout that the user has chosen.
#pragma once

#include "platform/keyboard_layout.h"

namespace tarnwick::platform {

class MacKeyboardLayout final : public KeyboardLayout {
 public:
    std::optional<std::string> displayText(std::uint16_t virtualKeyCode) override;
};

}  // namespace tarnwick::platform
