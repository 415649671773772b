// What the settings window shows as long as there is nothing to set in it.
#pragma once

#include <memory>

#include "platform/windows.h"

namespace tarnwick::qt {

std::unique_ptr<platform::View> makeSettingsPlaceholder();

}  // namespace tarnwick::qt
