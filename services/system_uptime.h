// SPDX-License-Identifier: MIT
// Time since the machine booted.
#pragma once

#include <string>

#include "platform/kernel.h"

namespace tarnwick {

/// Seconds since boot; 0 when the boot time cannot be read. The boot time counts in whole seconds,
/// so the value may be up to one second too large. Any thread.
double readUptime(platform::Kernel& kernel);

/// "2d 5h 17m", "5h 17m" or "17m"; seconds are never shown. A value that is not finite or does not
/// fit a signed 64-bit integer is a fatal error.
std::string uptimeText(double seconds);

}  // namespace tarnwick
