// SPDX-License-Identifier: MIT
#include "ui/qt/settings_content.h"

#include <utility>

#include "ui/qt/settings_widget.h"
#include "ui/qt/widget_view.h"

namespace tarnwick::qt {

std::unique_ptr<platform::View> makeSettingsContent(UserSettings& settings, const Theme& theme,
                                                    SettingsContentEnvironment environment) {
    return std::make_unique<WidgetView>(std::make_unique<SettingsWidget>(
        settings, theme, std::move(environment.view), std::move(environment.keyCodes)));
}

}  // namespace tarnwick::qt
