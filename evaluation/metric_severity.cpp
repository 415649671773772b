// SPDX-License-Identifier: MIT
#include "evaluation/metric_severity.h"

#include <array>
#include <cstddef>

namespace tarnwick {
namespace {

struct Appearance {
    std::string_view symbol;
    Tint tint;
};

/// By raw value.
constexpr std::array<Appearance, 3> kAppearances = {
    Appearance{"checkmark.circle.fill", Tint::green},
    Appearance{"info.circle.fill", Tint::yellow},
    Appearance{"exclamationmark.triangle.fill", Tint::red},
};

const Appearance& appearance(MetricSeverity severity) {
    return kAppearances.at(static_cast<std::size_t>(severity));
}

}  // namespace

std::optional<MetricSeverity> metricSeverityFromRawValue(std::int64_t raw) {
    if (raw < 0 || raw > 2) {
        return std::nullopt;
    }
    return static_cast<MetricSeverity>(raw);
}

std::string_view symbolName(MetricSeverity severity) {
    return appearance(severity).symbol;
}

Tint tint(MetricSeverity severity) {
    return appearance(severity).tint;
}

}  // namespace tarnwick
