// SPDX-License-Identifier: MIT
#include "tools/judged_metrics.h"

#include <cmath>
#include <limits>

namespace tarnwick::probe {
namespace {

JudgedMetric judged(std::string_view name, std::optional<double> usage, double normal,
                    double high) {
    if (usage && std::isnan(*usage)) {
        usage.reset();
    }
    JudgedMetric metric{name, usage, normalizedThresholds(normal, high), std::nullopt};
    if (usage) {
        metric.severity = MetricSummaryResolver::severity(*usage, metric.thresholds);
    }
    return metric;
}

std::optional<double> knownIf(bool isKnown, double usage) {
    return isKnown ? std::optional(usage) : std::nullopt;
}

}  // namespace

std::array<JudgedMetric, 4> judgedMetrics(const MachineSample& sample) {
    const MetricThresholds& limits = sample.thresholds;
    const GPUInfo gpu = sample.gpu.value_or(GPUInfo{});
    const bool hasVolume = sample.storage && !sample.storage->empty();
    const StorageInfo volume = hasVolume ? sample.storage->front() : StorageInfo{};
    return {judged("cpu", knownIf(!sample.cpu.coreUsages.empty(), sample.cpu.usagePercentage),
                   limits.cpuNormal, limits.cpuHigh),
            judged("gpu", knownIf(gpu.isAvailable, gpu.usagePercentage), limits.gpuNormal,
                   limits.gpuHigh),
            judged("memory", knownIf(sample.memory.total > 0, sample.memory.usagePercentage()),
                   limits.memoryNormal, limits.memoryHigh),
            judged("storage", knownIf(volume.totalSpace > 0, volume.usagePercentage()),
                   limits.storageNormal, limits.storageHigh)};
}

MetricDisplaySummary displaySummary(const MachineSample& sample) {
    constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
    const auto metrics = judgedMetrics(sample);
    return MetricSummaryResolver::displaySummary(MetricSummaryResolver::candidates(
        metrics[1].usage.has_value(), sample.thresholds, metrics[0].usage.value_or(kUnknown),
        metrics[1].usage.value_or(0), metrics[2].usage.value_or(kUnknown),
        metrics[3].usage.value_or(kUnknown)));
}

}  // namespace tarnwick::probe
