// SPDX-License-Identifier: MIT
// What the panel calls a battery's condition.
#pragma once

#include <string>
#include <string_view>

namespace tarnwick {

/// "Normal", "Service Recommended" or "Unknown" for the condition word as read; white space
/// around it and its case do not matter.
std::string batteryConditionDisplayText(std::string_view raw);

}  // namespace tarnwick
