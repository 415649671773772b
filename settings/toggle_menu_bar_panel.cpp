// SPDX-License-Identifier: MIT
// Opening and closing the panel from code.
#include "settings/hot_key_service.h"

namespace tarnwick {

bool HotKeyService::toggleMenuBarPanel(platform::StatusItem& statusItem,
                                       const platform::Logger& logger) {
    logger.info("toggleMenuBarPanel() called");
    if (!statusItem.inTray()) {
        logger.error("Could not find NSStatusBarButton in any window");
        return false;
    }
    logger.info("Found NSStatusBarButton, performing click");
    return statusItem.performClick();
}

}  // namespace tarnwick
