// SPDX-License-Identifier: MIT
#include "services/system_uptime.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace tarnwick {
namespace {

constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;

/// Truncates towards zero; a fatal error when the result does not fit.
std::int64_t wholeSeconds(double seconds) {
    // 2^63, the first value that does not fit; its negative does.
    constexpr double kLimit = 9223372036854775808.0;
    if (!std::isfinite(seconds) || seconds < -kLimit || seconds >= kLimit) {
        std::abort();
    }
    return static_cast<std::int64_t>(seconds);
}

}  // namespace

double readUptime(platform::Kernel& kernel) {
    const auto boot = kernel.bootTime();
    if (!boot) {
        return 0;
    }
    return kernel.wallClockSeconds() - static_cast<double>(boot->seconds);
}

std::string uptimeText(double seconds) {
    const std::int64_t s = wholeSeconds(seconds);
    const std::string hours = std::to_string(s % kDay / kHour) + "h ";
    const std::string minutes = std::to_string(s % kHour / kMinute) + "m";
    if (s >= kDay) {
        return std::to_string(s / kDay) + "d " + hours + minutes;
    }
    if (s % kDay >= kHour) {
        return hours + minutes;
    }
    return minutes;
}

}  // namespace tarnwick
