// SPDX-License-Identifier: MIT
// The four metrics that are judged, with their verdicts.
#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "evaluation/metric_severity.h"
#include "evaluation/metric_summary_resolver.h"
#include "settings/metric_thresholds.h"
#include "tools/machine_sample.h"

namespace tarnwick::probe {

struct JudgedMetric {
    /// "cpu", "gpu", "memory" or "storage".
    std::string_view name;
    /// Percent; absent when unknown.
    std::optional<double> usage;
    ThresholdPair thresholds;
    /// Absent when the usage is unknown.
    std::optional<MetricSeverity> severity;
};

/// In the order of the panel.
std::array<JudgedMetric, 4> judgedMetrics(const MachineSample& sample);

/// What the status item would say of the sample.
MetricDisplaySummary displaySummary(const MachineSample& sample);

}  // namespace tarnwick::probe
