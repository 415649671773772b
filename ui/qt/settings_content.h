// What the settings window shows.
#pragma once

#include <functional>
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
    /// The content has gone, and its memory with it; called on a later turn. May be empty.
    std::function<void()> gone{};
};

/// The tabs with what stands on them. `settings` and `theme` must outlive it.
std::unique_ptr<platform::View> makeSettingsContent(UserSettings& settings, const Theme& theme,
                                                    SettingsContentEnvironment environment);

}  // namespace tarnwick::qt
