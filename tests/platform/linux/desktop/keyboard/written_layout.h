// A keyboard layout of keysyms that a test writes down.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "platform/linux/desktop/keyboard/keysym_layout.h"

namespace tarnwick::platform::testing {

/// Its keys have no texts, and every key that is not written down produces nothing.
class WrittenLayout final : public KeysymLayout {
 public:
    explicit WrittenLayout(std::map<std::uint16_t, xkb_keysym_t> keysyms = {})
        : keysyms_(std::move(keysyms)) {}

    std::optional<std::string> displayText(std::uint16_t) override { return std::nullopt; }
    xkb_keysym_t keysym(std::uint16_t virtualKeyCode) override {
        const auto found = keysyms_.find(virtualKeyCode);
        return found == keysyms_.end() ? xkb_keysym_t{XKB_KEY_NoSymbol} : found->second;
    }

 private:
    std::map<std::uint16_t, xkb_keysym_t> keysyms_;
};

}  // namespace tarnwick::platform::testing
