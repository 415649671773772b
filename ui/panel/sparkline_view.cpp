// SPDX-License-Identifier: MIT
#include "ui/panel/sparkline_view.h"

#include <algorithm>
#include <cstddef>

namespace tarnwick {

std::vector<SparklinePoint> SparklineView::points(double width, double height) const {
    std::vector<SparklinePoint> line;
    if (values.size() < 2) {
        return line;
    }
    const auto [minimum, maximum] = std::minmax_element(values.begin(), values.end());
    const double span = std::max(*maximum - *minimum, kLeastSpan);
    const double steps = static_cast<double>(values.size() - 1);
    line.reserve(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        line.push_back(
            {width * static_cast<double>(i) / steps, height * (1 - (values[i] - *minimum) / span)});
    }
    return line;
}

}  // namespace tarnwick
