// SPDX-License-Identifier: MIT
// The control in which the user records a shortcut by pressing it. Independent of any toolkit.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/keyboard_layout.h"

namespace tarnwick {

/// The one line that the field shows.
struct ShortcutFieldText {
    std::string text;
    /// True: drawn in the placeholder colour. False: in the label colour.
    bool isPlaceholder = true;

    bool operator==(const ShortcutFieldText&) const = default;
};

/// A toolkit's control passes its events to this object and draws text() centred in a rounded bezel
/// that fills the control. The text can be neither edited nor selected. The control accepts the
/// focus. Main thread only.
class ShortcutField {
 public:
    /// Of the control, points.
    static constexpr int kHeight = 24;
    /// Of the system font, points.
    static constexpr int kFontSize = 13;
    /// To assistive technology the control is a button with this label and this help.
    static constexpr const char* kAccessibilityLabel = "Global shortcut recorder";
    static constexpr const char* kAccessibilityHelp =
        "Click, then press Command and a key. Press Escape to cancel or Delete to clear.";

    /// `layout` must outlive the field.
    explicit ShortcutField(platform::KeyboardLayout& layout);
    ShortcutField(const ShortcutField&) = delete;
    ShortcutField& operator=(const ShortcutField&) = delete;

    /// A shortcut was recorded: its key code and modifier flags; -1 and 0 when it was cleared.
    std::function<void(std::int64_t keyCode, std::int64_t modifiers)> onShortcutRecorded;
    /// The message to show below the field; absent to show none.
    std::function<void(const std::optional<std::string>& message)> onValidationMessageChanged;
    /// isRecording() has changed.
    std::function<void()> onRecordingChanged;
    /// Gives the control the focus of its window.
    std::function<void()> makeFirstResponder;
    /// text() may have changed.
    std::function<void()> onRefresh;

    /// -1 for none.
    std::int64_t currentKeyCode() const { return currentKeyCode_; }
    std::int64_t currentModifiers() const { return currentModifiers_; }
    /// Waiting for the user's key press.
    bool isRecording() const { return isRecording_; }
    const ShortcutFieldText& text() const { return text_; }

    /// Shows another shortcut, whether valid or not.
    void setShortcut(std::int64_t keyCode, std::int64_t modifiers);

    // Events. `flags` are the modifier flags that are held. False when the field does not use the
    // event: it goes on to the next responder.
    void mouseDown();
    bool flagsChanged(std::int64_t flags);
    bool keyDown(std::int64_t keyCode, std::int64_t flags);
    /// The control has lost the focus.
    void resignFirstResponder();

 private:
    void setRecording(bool isRecording);
    void record(std::int64_t keyCode, std::int64_t modifiers);
    void stopRecording();
    void setMessage(const std::optional<std::string>& message);
    void refresh();

    platform::KeyboardLayout& layout_;
    std::int64_t currentKeyCode_ = -1;
    std::int64_t currentModifiers_ = 0;
    bool isRecording_ = false;
    ShortcutFieldText text_;
};

}  // namespace tarnwick
