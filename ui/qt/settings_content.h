// What the settings window shows.
#pragma once

#include <memory>

#include "platform/windows.h"
#include "settings/user_settings.h"
#include "ui/qt/shortcut_field_widget.h"
#include "ui/qt/theme.h"
#include "ui/settings/settings_view.h"

namespace tarnwick::qt {

/// What the content runs on besides its view's environment.
struct SettingsContentEnvironment {
    SettingsViewEnvironment view;
    /// How keys are named where they are recorded.
    KeyCodes keyCodes{};
};

/// The tabs with what stands on them. `settings` and `theme` must outlive it.
std::unique_ptr<platform::View> makeSettingsContent(UserSettings& settings, const Theme& theme,
                                                    SettingsContentEnvironment environment);

}  // namespace tarnwick::qt
