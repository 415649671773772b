// SPDX-License-Identifier: MIT
#include "platform/linux/kernel/proc_uptime.h"

#include <charconv>
#include <system_error>

namespace tarnwick::platform {

std::optional<double> parseUptime(std::string_view text) {
    double seconds = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, seconds, std::chars_format::fixed);
    // A space and the processors' idle time must follow.
    if (error != std::errc() || rest == end || *rest != ' ' || !(seconds >= 0) || seconds > 1e12) {
        return std::nullopt;
    }
    return seconds;
}

}  // namespace tarnwick::platform
