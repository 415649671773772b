// SPDX-License-Identifier: MIT
// Percentages within their bounds.
#pragma once

#include <algorithm>
#include <cmath>

namespace tarnwick {

/// The value limited to 0...100; 0 for a value that is not finite.
inline double clampedPercentage(double value) {
    // std::clamp would let -0.0 through.
    return std::isfinite(value) && value > 0 ? std::min(value, 100.0) : 0;
}

}  // namespace tarnwick
