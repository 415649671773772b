// The card of one metric's two thresholds. For Objective-C++ only.
#pragma once

#include "ui/appkit/settings_items.h"

namespace tarnwick::appkit {

NSView<TNWSettingsItemView>* makeThresholdCard(const SettingsItem& item, SettingsView& view);

}  // namespace tarnwick::appkit
