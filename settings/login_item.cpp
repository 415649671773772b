// SPDX-License-Identifier: MIT
// Start at login: the stored preference is a wish, and the system's answer decides.
#include <string>

#include "settings/user_settings.h"

namespace tarnwick {

void UserSettings::syncLoginItemState() {
    const platform::LoginServiceStatus status = loginService_.status();
    const bool enabled = status == platform::LoginServiceStatus::enabled;
    if (launchOnLogin() == enabled || status == platform::LoginServiceStatus::unanswered) {
        return;
    }
    setLaunchOnLogin(enabled);
    logger_.info(enabled ? "Synced login item state: 1" : "Synced login item state: 0");
}

void UserSettings::updateLoginItem() {
    const bool wanted = launchOnLogin();
    const auto error = wanted ? loginService_.registerService() : loginService_.unregisterService();
    if (error) {
        logger_.error("Login item update failed: " + error->localizedDescription);
        syncLoginItemState();
        return;
    }
    logger_.info(wanted ? "Registered as login item" : "Unregistered from login items");
}

}  // namespace tarnwick
