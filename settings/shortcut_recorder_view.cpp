// SPDX-License-Identifier: MIT
#include "settings/shortcut_recorder_view.h"

#include <utility>

namespace tarnwick {

ShortcutRecorderView::ShortcutRecorderView(platform::KeyboardLayout& layout,
                                           Binding<std::int64_t> keyCode,
                                           Binding<std::int64_t> modifiers,
                                           Binding<Text> validationMessage)
    : keyCode_(std::move(keyCode)),
      modifiers_(std::move(modifiers)),
      validationMessage_(std::move(validationMessage)),
      field_(layout) {
    field_.onShortcutRecorded = [this](std::int64_t code, std::int64_t flags) {
        keyCode_.set(code);
        modifiers_.set(flags);
    };
    field_.onValidationMessageChanged = [this](const Text& message) {
        validationMessage_.set(message);
    };
}

void ShortcutRecorderView::update() {
    field_.setShortcut(keyCode_.get(), modifiers_.get());
}

}  // namespace tarnwick
