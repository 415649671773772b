// Percentages within their bounds.
#pragma once

#include <algorithm>
#include <cmath>

namespace tarnwick {

/// A percentage within 0...100; 0 for what is not finite.
inline double clampedPercentage(double value) {
    // Not std::clamp, which lets -0.0 through.
    return std::isfinite(value) && value > 0 ? std::min(value, 100.0) : 0;
}

}  // namespace tarnwick
