// The label above a slider for one of its thresholds.
#pragma once

#include <string>
#include <string_view>

#include "core/records/tint.h"
#include "ui/settings/dual_threshold_slider.h"

namespace tarnwick {

/// A dot in the colour, then the text.
struct ThresholdValuePill {
    /// Points.
    static constexpr int kDotSize = 8;

    std::string_view title;
    /// Percent.
    double value = 0;
    Tint color = Tint::gray;

    std::string text() const { return std::string(title) + ' ' + wholePercentText(value) + '%'; }

    bool operator==(const ThresholdValuePill&) const = default;
};

}  // namespace tarnwick
