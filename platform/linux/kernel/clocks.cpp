// SPDX-License-Identifier: MIT
#include "platform/linux/kernel/clocks.h"

#include <time.h>

namespace tarnwick::platform {

namespace {

double secondsOf(clockid_t clock) {
    timespec now{};
    ::clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

}  // namespace

double rawMonotonicSeconds() {
    return secondsOf(CLOCK_MONOTONIC_RAW);
}

double sinceBootSeconds() {
    return secondsOf(CLOCK_BOOTTIME);
}

double wallClockNow() {
    return secondsOf(CLOCK_REALTIME);
}

}  // namespace tarnwick::platform
