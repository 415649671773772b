// SPDX-License-Identifier: MIT
// The clocks of the system, in seconds.
#pragma once

namespace tarnwick::platform {

/// The raw monotonic clock: not steered by time servers, stands still while the machine sleeps.
double rawMonotonicSeconds();

/// Time since boot, including sleep. For the age of readings.
double sinceBootSeconds();

/// The wall clock, since 1970.
double wallClockNow();

}  // namespace tarnwick::platform
