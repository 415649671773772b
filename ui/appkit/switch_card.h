// A preference that is switched on and off. For Objective-C++ only.
#pragma once

#include "ui/appkit/settings_items.h"

namespace tarnwick::appkit {

NSView<TNWSettingsItemView>* makeSwitchCard(const SettingsItem& item, SettingsView& view);

}  // namespace tarnwick::appkit
