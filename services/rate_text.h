// Transfer rates as people read them.
#pragma once

#include <string>

#include "platform/byte_count_formatter.h"

namespace tarnwick {

/// A rate in bytes per second, such as "1.5 MB/s": rounded to a whole byte count, halves away from
/// zero, in the file style. What is not above 0, not-a-number too, is "0 B/s". A fatal error when
/// the rate has no signed 64-bit byte count.
std::string rateText(double bytesPerSecond, const platform::ByteCountFormatter& formatter);

}  // namespace tarnwick
