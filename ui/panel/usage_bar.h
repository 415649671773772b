// One metric line with a filled bar.
#pragma once

#include <cmath>
#include <string>

#include "core/tint.h"

namespace tarnwick {

/// Title and symbol (subheadline) and the detail text (caption, secondary) in one row; the bar
/// under it.
struct UsageBar {
    std::string title;
    /// Symbol name.
    std::string icon;
    /// Percent, 0 to 100.
    double value = 0;
    std::string detail;
    Tint tint = Tint::green;

    bool operator==(const UsageBar&) const = default;

    /// The share of the bar that is filled, 0 to 1, whatever the value.
    double fraction() const {
        return !std::isfinite(value) || value < 0 ? 0 : std::fmin(value, 100) / 100;
    }
};

}  // namespace tarnwick
