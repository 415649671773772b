// SPDX-License-Identifier: MIT
// Parses /proc/uptime.
#pragma once

#include <optional>
#include <string_view>

namespace tarnwick::platform {

/// Seconds since boot, with hundredths. Absent when it is missing, damaged or cut short.
std::optional<double> parseUptime(std::string_view text);

}  // namespace tarnwick::platform
