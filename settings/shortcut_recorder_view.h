// SPDX-License-Identifier: MIT
// Ties a shortcut field to the settings it edits.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/keyboard_layout.h"
#include "settings/binding.h"
#include "settings/shortcut_field.h"

namespace tarnwick {

/// Main thread only.
class ShortcutRecorderView {
 public:
    using Text = std::optional<std::string>;

    /// `layout` and the bound values must outlive the view. The field shows the bound values from
    /// the first update() on.
    ShortcutRecorderView(platform::KeyboardLayout& layout, Binding<std::int64_t> keyCode,
                         Binding<std::int64_t> modifiers, Binding<Text> validationMessage);
    ShortcutRecorderView(const ShortcutRecorderView&) = delete;
    ShortcutRecorderView& operator=(const ShortcutRecorderView&) = delete;

    ShortcutField& field() { return field_; }
    const ShortcutField& field() const { return field_; }
    const Binding<Text>& validationMessage() const { return validationMessage_; }

    /// Shows the bound shortcut. Call it whenever the bound values have changed.
    void update();

 private:
    Binding<std::int64_t> keyCode_;
    Binding<std::int64_t> modifiers_;
    Binding<Text> validationMessage_;
    ShortcutField field_;
};

}  // namespace tarnwick
