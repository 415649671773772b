// SPDX-License-Identifier: MIT
// The content of the settings window.
#pragma once

#include <memory>

#include "platform/windows.h"
#include "settings/user_settings.h"
#include "ui/qt/shortcut_field_widget.h"
#include "ui/qt/theme.h"
#include "ui/settings/settings_view.h"

namespace tarnwick::qt {

/// What the content runs on, in addition to the environment of its view.
struct SettingsContentEnvironment {
    SettingsViewEnvironment view;
    /// Gives the key codes for recording shortcuts.
    KeyCodes keyCodes{};
};

/// The tabs and their pages. `settings` and `theme` must outlive it.
std::unique_ptr<platform::View> makeSettingsContent(UserSettings& settings, const Theme& theme,
                                                    SettingsContentEnvironment environment);

}  // namespace tarnwick::qt
