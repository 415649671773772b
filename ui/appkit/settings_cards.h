// SPDX-License-Identifier: MIT
// The cards of the settings window. For Objective-C++ only.
#pragma once

#include "ui/appkit/settings_items.h"

namespace tarnwick::appkit {

NSView<TNWSettingsItemView>* makeDisplayModeCard(const SettingsItem& item, SettingsView& view);

NSView<TNWSettingsItemView>* makeShortcutCard(const SettingsItem& item, SettingsView& view);

NSView<TNWSettingsItemView>* makeSwitchCard(const SettingsItem& item, SettingsView& view);

NSView<TNWSettingsItemView>* makeThresholdCard(const SettingsItem& item, SettingsView& view);

}  // namespace tarnwick::appkit
