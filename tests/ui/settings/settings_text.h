// SPDX-License-Identifier: MIT
// Pages of the settings as text, for tests.
#pragma once

#include <string>

#include "ui/settings/settings_page.h"

namespace tarnwick::testing {

std::string settingsText(const SettingsPage& page);

}  // namespace tarnwick::testing
