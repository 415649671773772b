// The clocks of the system, in seconds.
#pragma once

namespace tarnwick::platform {

/// The raw monotonic clock: not steered by time servers, stands still while the machine sleeps.
double rawMonotonicSeconds();

/// Time since boot with the time asleep: for the age of what was read.
double sinceBootSeconds();

/// The wall clock, since 1970.
double wallClockNow();

}  // namespace tarnwick::platform
