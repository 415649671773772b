// SPDX-License-Identifier: MIT
// Judges the four metrics and chooses the one summary that is shown.
#pragma once

#include <string>
#include <vector>

#include "evaluation/metric_severity.h"
#include "settings/metric_thresholds.h"

namespace tarnwick {

/// The verdict on one metric.
struct Candidate {
    MetricSeverity severity = MetricSeverity::ok;
    /// Short name and value: "CPU 93%".
    std::string menuBarText;
    /// A sentence that names the metric, its value and the threshold it crossed.
    std::string popoverText;
    /// Points above the crossed threshold, never below 0.
    double tieBreakScore = 0;
};

/// What the status item and the panel's header say.
struct MetricDisplaySummary {
    MetricSeverity severity = MetricSeverity::ok;
    std::string menuBarText;
    std::string popoverText;

    bool operator==(const MetricDisplaySummary&) const = default;
};

namespace MetricSummaryResolver {

/// The verdict on a value in percent, which is not clamped. A value equal to a threshold reaches
/// it; a value that is not a number reaches none. The pair is normalised first.
MetricSeverity severity(double value, ThresholdPair thresholds);

/// The metrics that reach a threshold, in the order CPU, GPU, memory, storage; the GPU only with
/// `includeGPU`. Values are percent and are not clamped. A value equal to the threshold reaches it;
/// a value that is not a number reaches none.
std::vector<Candidate> candidates(bool includeGPU, const MetricThresholds& thresholds, double cpu,
                                  double gpu, double memory, double storage);

/// The candidate to show: the one with the highest severity, then the greatest tie-break score,
/// then the earliest. Requires: `candidates` is not empty.
const Candidate& best(const std::vector<Candidate>& candidates);

/// What the panel says about the best of these candidates, or that there is none.
MetricDisplaySummary displaySummary(const std::vector<Candidate>& candidates);

/// For each metric the longest sentence that the panel may say about it, for who keeps room for all
/// of them.
std::vector<std::string> longestPopoverTexts();

}  // namespace MetricSummaryResolver

}  // namespace tarnwick
