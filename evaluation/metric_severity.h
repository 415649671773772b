// SPDX-License-Identifier: MIT
// The verdict on a metric.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string_view>

#include "core/records/tint.h"

namespace tarnwick {

/// Ordered by raw value; the raw values are 0, 1 and 2.
enum class MetricSeverity : std::int32_t {
    /// Below the normal threshold.
    ok = 0,
    /// At or above normal, below high.
    info = 1,
    /// At or above high.
    warning = 2,
};

/// Absent for anything but 0, 1 and 2.
std::optional<MetricSeverity> metricSeverityFromRawValue(std::int64_t raw);
/// Name of the symbol that stands for the severity.
std::string_view symbolName(MetricSeverity severity);
/// Green, yellow, red.
Tint tint(MetricSeverity severity);

}  // namespace tarnwick
