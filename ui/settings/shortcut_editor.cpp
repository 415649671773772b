// SPDX-License-Identifier: MIT
#include "ui/settings/shortcut_editor.h"

#include "settings/shortcut.h"

namespace tarnwick {

namespace {

StatusLine warning(std::string text) {
    return {"exclamationmark.triangle.fill", Tint::orange, std::move(text)};
}

std::optional<StatusLine> registrationLine(const ShortcutStatus& status,
                                           platform::KeyboardLayout& layout) {
    switch (status.registrationState) {
        case RegistrationState::inactive:
            break;
        case RegistrationState::active:
            if (isValidShortcut(status.keyCode, status.modifiers)) {
                return StatusLine{
                    "checkmark.circle.fill", Tint::green,
                    "Shortcut active: " +
                        (status.otherKeys.empty()
                             ? shortcutDisplayString(status.keyCode, status.modifiers, layout)
                             : status.otherKeys)};
            }
            break;
        case RegistrationState::conflict:
            return warning("This shortcut is already in use. Choose a different combination.");
        case RegistrationState::failed:
            return warning("The shortcut could not be activated. Choose a different combination.");
    }
    return std::nullopt;
}

}  // namespace

std::vector<StatusLine> statusLines(const ShortcutStatus& status,
                                    platform::KeyboardLayout& layout) {
    std::vector<StatusLine> lines;
    if (status.validationMessage) {
        lines.push_back(warning(*status.validationMessage));
    }
    if (auto line = registrationLine(status, layout)) {
        lines.push_back(std::move(*line));
    }
    return lines;
}

}  // namespace tarnwick
