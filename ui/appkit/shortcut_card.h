// The card on which the global shortcut is recorded. For Objective-C++ only.
#pragma once

#include "ui/appkit/settings_items.h"

namespace tarnwick::appkit {

NSView<TNWSettingsItemView>* makeShortcutCard(const SettingsItem& item, SettingsView& view);

}  // namespace tarnwick::appkit
