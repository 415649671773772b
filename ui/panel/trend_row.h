// A metric's current value and its recent course.
#pragma once

#include <string>
#include <vector>

#include "core/tint.h"
#include "ui/panel/sparkline_view.h"

namespace tarnwick {

/// At the left the title (caption, secondary) over the value (caption, medium), at the right the
/// sparkline.
struct TrendRow {
    // Points.
    /// Between the texts and the sparkline, at least.
    static constexpr int kSpacing = 10;
    /// Between title and value.
    static constexpr int kTextSpacing = 2;
    static constexpr int kSparklineWidth = 120;
    static constexpr int kSparklineHeight = 28;

    std::string title;
    std::string value;
    std::vector<double> values;
    Tint color = Tint::green;

    bool operator==(const TrendRow&) const = default;

    SparklineView sparkline() const { return {values, color}; }
};

}  // namespace tarnwick
