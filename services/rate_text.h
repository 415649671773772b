// SPDX-License-Identifier: MIT
// Transfer rates as text.
#pragma once

#include <string>

#include "platform/byte_count_formatter.h"

namespace tarnwick {

/// A rate in bytes per second, such as "1.5 MB/s": rounded to a whole byte count, halves away from
/// zero, in the file style. "0 B/s" for zero, negative values and not-a-number. A fatal error when
/// the rate does not fit a signed 64-bit byte count.
std::string rateText(double bytesPerSecond, const platform::ByteCountFormatter& formatter);

}  // namespace tarnwick
