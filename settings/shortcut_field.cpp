// SPDX-License-Identifier: MIT
#include "settings/shortcut_field.h"

#include <utility>

#include "settings/key_codes.h"
#include "settings/shortcut.h"

namespace tarnwick {
ShortcutField::ShortcutField(platform::KeyboardLayout& layout) : layout_(layout) {
    refresh();
}

void ShortcutField::setShortcut(std::int64_t keyCode, std::int64_t modifiers) {
    currentKeyCode_ = keyCode;
    currentModifiers_ = modifiers;
    refresh();
}

void ShortcutField::mouseDown() {
    setRecording(true);
    if (makeFirstResponder) {
        makeFirstResponder();
    }
    setMessage(std::nullopt);
    refresh();
}

bool ShortcutField::flagsChanged(std::int64_t flags) {
    if (!isRecording_) {
        return false;
    }
    setMessage(modifierValidationMessage(flags));
    refresh();
    return true;
}

bool ShortcutField::keyDown(std::int64_t keyCode, std::int64_t flags) {
    if (!isRecording_) {
        return false;
    }
    if (keyCode == key_code::kDelete || keyCode == key_code::kForwardDelete) {
        record(-1, 0);
        return true;
    }
    if (keyCode == key_code::kEscape) {
        stopRecording();
        return true;
    }
    const ShortcutValidation verdict = validateShortcut(keyCode, flags);
    if (verdict == ShortcutValidation::valid) {
        record(keyCode, flags & modifier_flag::kMask);
    } else if (verdict != ShortcutValidation::empty) {
        setMessage(rejectionMessage(verdict));
        refresh();
    }
    return true;
}

void ShortcutField::resignFirstResponder() {
    stopRecording();
}

void ShortcutField::setRecording(bool isRecording) {
    if (std::exchange(isRecording_, isRecording) != isRecording && onRecordingChanged) {
        onRecordingChanged();
    }
}

void ShortcutField::record(std::int64_t keyCode, std::int64_t modifiers) {
    setRecording(false);
    currentKeyCode_ = keyCode;
    currentModifiers_ = modifiers;
    if (onShortcutRecorded) {
        onShortcutRecorded(keyCode, modifiers);
    }
    setMessage(std::nullopt);
    refresh();
}

void ShortcutField::stopRecording() {
    setRecording(false);
    setMessage(std::nullopt);
    refresh();
}

void ShortcutField::setMessage(const std::optional<std::string>& message) {
    if (onValidationMessageChanged) {
        onValidationMessageChanged(message);
    }
}

void ShortcutField::refresh() {
    if (isRecording_) {
        text_ = {"Press \u2318 + key\u2026", true};
    } else if (isValidShortcut(currentKeyCode_, currentModifiers_)) {
        text_ = {shortcutDisplayString(currentKeyCode_, currentModifiers_, layout_), false};
    } else {
        text_ = {"Click to record", true};
    }
    if (onRefresh) {
        onRefresh();
    }
}

}  // namespace tarnwick
