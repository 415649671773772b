// Opening and closing the panel from code.
#pragma once

#include "platform/desktop.h"
#include "platform/log.h"

namespace tarnwick {

/// Clicks the status item's button for the user, which opens the panel or closes it. False when
/// there is no button to click. Main thread.
bool toggleMenuBarPanel(platform::StatusItem& statusItem,
                        const platform::Logger& logger = platform::Logger());

}  // namespace tarnwick
