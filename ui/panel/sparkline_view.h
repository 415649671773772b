// SPDX-License-Identifier: MIT
// A small line chart.
#pragma once

#include <vector>

#include "core/records/tint.h"

namespace tarnwick {

/// A point of a sparkline, in points from its upper left corner.
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
    // With fewer than two values a vertically centred bar across the whole width is drawn instead
    // of the line. Its height and corner radius in points, and its opacity in the secondary colour:
    static constexpr double kPlaceholderHeight = 2;
    static constexpr double kPlaceholderCorner = 3;
    static constexpr double kPlaceholderOpacity = 0.2;

    std::vector<double> values;
    Tint color = Tint::green;

    bool operator==(const SparklineView&) const = default;

    /// The line in a frame of this size, with its greatest value at the top; a flat series lies at
    /// the bottom. Empty when the placeholder bar is drawn instead.
    std::vector<SparklinePoint> points(double width, double height) const;
};

}  // namespace tarnwick
