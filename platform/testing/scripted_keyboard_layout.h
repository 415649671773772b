// SPDX-License-Identifier: MIT
// An invented keyboard layout.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/keyboard_layout.h"

namespace tarnwick::platform::testing {

class ScriptedKeyboardLayout final : public KeyboardLayout {
 public:
    /// The texts of the keys; every other key produces nothing.
    std::map<std::uint16_t, std::string> texts;
    /// Every key that was asked for, in order.
    std::vector<std::uint16_t> asked;

    ScriptedKeyboardLayout() = default;
    explicit ScriptedKeyboardLayout(std::map<std::uint16_t, std::string> keyTexts)
        : texts(std::move(keyTexts)) {}

    std::optional<std::string> displayText(std::uint16_t virtualKeyCode) override {
        asked.push_back(virtualKeyCode);
        const auto text = texts.find(virtualKeyCode);
        return text == texts.end() ? std::nullopt : std::optional(text->second);
    }
};

}  // namespace tarnwick::platform::testing
