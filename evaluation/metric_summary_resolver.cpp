// SPDX-License-Identifier: MIT
#include "evaluation/metric_summary_resolver.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "core/records/text.h"

namespace tarnwick::MetricSummaryResolver {
namespace {

struct Metric {
    std::string_view shortName;
    std::string_view longName;
};

constexpr Metric kCPU{"CPU", "CPU usage"};
constexpr Metric kGPU{"GPU", "GPU usage"};
constexpr Metric kMemory{"RAM", "Memory usage"};
constexpr Metric kStorage{"Disk", "Storage usage"};

std::string popoverText(const Metric& metric, std::string_view value, std::string_view word) {
    return std::string(metric.longName) + " is at " + std::string(value) + ", above the " +
           std::string(word) + " threshold.";
}

Candidate judge(const Metric& metric, double value, ThresholdPair stored) {
    // The caller may pass a pair that is not normalised. Doing it twice changes nothing.
    const ThresholdPair pair = normalizedThresholds(stored.normal, stored.high);
    Candidate candidate;
    double crossed = pair.normal;
    std::string_view word = "normal";
    candidate.severity = severity(value, pair);
    if (candidate.severity == MetricSeverity::warning) {
        crossed = pair.high;
        word = "high";
    }
    const std::string valueText = percentText(value, 0);
    candidate.menuBarText = std::string(metric.shortName) + ' ' + valueText;
    candidate.popoverText = popoverText(metric, valueText, word);
    candidate.tieBreakScore = std::max(0.0, value - crossed);
    return candidate;
}

}  // namespace

MetricSeverity severity(double value, ThresholdPair thresholds) {
    const ThresholdPair pair = normalizedThresholds(thresholds.normal, thresholds.high);
    if (value >= pair.high) {
        return MetricSeverity::warning;
    }
    return value >= pair.normal ? MetricSeverity::info : MetricSeverity::ok;
}

std::vector<Candidate> candidates(bool includeGPU, const MetricThresholds& thresholds, double cpu,
                                  double gpu, double memory, double storage) {
    std::vector<Candidate> result;
    const auto add = [&result](const Metric& metric, double value, ThresholdPair pair) {
        Candidate candidate = judge(metric, value, pair);
        if (candidate.severity != MetricSeverity::ok) {
            result.push_back(std::move(candidate));
        }
    };
    add(kCPU, cpu, {thresholds.cpuNormal, thresholds.cpuHigh});
    if (includeGPU) {
        add(kGPU, gpu, {thresholds.gpuNormal, thresholds.gpuHigh});
    }
    add(kMemory, memory, {thresholds.memoryNormal, thresholds.memoryHigh});
    add(kStorage, storage, {thresholds.storageNormal, thresholds.storageHigh});
    return result;
}

const Candidate& best(const std::vector<Candidate>& candidates) {
    // max_element keeps the first of equals.
    return *std::max_element(
        candidates.begin(), candidates.end(), [](const Candidate& a, const Candidate& b) {
            return a.severity != b.severity ? a.severity < b.severity
                                            : a.tieBreakScore < b.tieBreakScore;
        });
}

MetricDisplaySummary displaySummary(const std::vector<Candidate>& candidates) {
    if (candidates.empty()) {
        return {MetricSeverity::ok, "", "No metrics are above thresholds."};
    }
    const Candidate& shown = best(candidates);
    return {shown.severity, shown.menuBarText, shown.popoverText};
}

std::vector<std::string> longestPopoverTexts() {
    std::vector<std::string> texts;
    for (const Metric& metric : {kCPU, kGPU, kMemory, kStorage}) {
        texts.push_back(popoverText(metric, "100%", "normal"));
    }
    return texts;
}

}  // namespace tarnwick::MetricSummaryResolver
