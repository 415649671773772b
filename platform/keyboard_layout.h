// SPDX-License-Identifier: MIT
// The keyboard layout that the user types with.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tarnwick::platform {

/// Main thread.
class KeyboardLayout {
 public:
    virtual ~KeyboardLayout() = default;

    /// The characters that a key produces in the current layout, UTF-8, in upper case:
    /// `UCKeyTranslate` with the "display" action, no modifiers and no dead keys. `virtualKeyCode`
    /// is one of the `kVK_` numbers. Absent if there is no layout data, after an error, and for a
    /// key that produces nothing.
    virtual std::optional<std::string> displayText(std::uint16_t virtualKeyCode) = 0;
};

/// For a system that does not tell its layout: no key produces anything.
class NullKeyboardLayout final : public KeyboardLayout {
 public:
    std::optional<std::string> displayText(std::uint16_t) override { return std::nullopt; }
};

}  // namespace tarnwick::platform
