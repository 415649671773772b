// A small line chart.
#pragma once

#include <vector>

#include "core/records/tint.h"

namespace tarnwick {

/// A place in a sparkline, points from its upper left corner.
struct SparklinePoint {
    double x = 0;
    double y = 0;

    bool operator==(const SparklinePoint&) const = default;
};

struct SparklineView {
    static constexpr double kLineWidth = 1.8;
    static constexpr double kMiterLimit = 10;
    /// Series that vary less are drawn against this span, so that noise does not fill the height.
    static constexpr double kLeastSpan = 1;
    // In place of a line that has fewer than two values stands a bar across the whole width, in
    // the middle: the secondary colour at this opacity, this high, with corners of this radius.
    static constexpr double kPlaceholderHeight = 2;
    static constexpr double kPlaceholderCorner = 3;
    static constexpr double kPlaceholderOpacity = 0.2;

    std::vector<double> values;
    Tint color = Tint::green;

    bool operator==(const SparklineView&) const = default;

    /// The line in a frame of this size, its greatest value at the top, a flat series at the
    /// bottom. Empty when a placeholder stands in its place.
    std::vector<SparklinePoint> points(double width, double height) const;
};

}  // namespace tarnwick
