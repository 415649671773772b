// The card that selects what the status item shows. For Objective-C++ only.
#pragma once

#include "ui/appkit/settings_items.h"

namespace tarnwick::appkit {

NSView<TNWSettingsItemView>* makeDisplayModeCard(const SettingsItem& item, SettingsView& view);

}  // namespace tarnwick::appkit
