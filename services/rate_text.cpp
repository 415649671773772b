// SPDX-License-Identifier: MIT
#include "services/rate_text.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace tarnwick {

std::string rateText(double bytesPerSecond, const platform::ByteCountFormatter& formatter) {
    if (!(bytesPerSecond > 0)) {
        return "0 B/s";
    }
    // The first whole number that a signed 64-bit count cannot hold.
    constexpr double kLimit = 0x1p63;
    const double byteCount = std::round(bytesPerSecond);
    if (byteCount >= kLimit) {
        std::abort();
    }
    return formatter.stringFromByteCount(static_cast<std::int64_t>(byteCount),
                                         platform::CountStyle::file) +
           "/s";
}

}  // namespace tarnwick
