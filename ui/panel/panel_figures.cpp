// SPDX-License-Identifier: MIT
#include "ui/panel/panel_figures.h"

#include <algorithm>
#include <limits>

#include "evaluation/metric_severity.h"

namespace tarnwick {

Tint levelTint(double value, double normal, double high) {
    return tint(value >= high     ? MetricSeverity::warning
                : value >= normal ? MetricSeverity::info
                                  : MetricSeverity::ok);
}

std::string_view levelMark(Tint level) {
    for (const MetricSeverity severity : {MetricSeverity::info, MetricSeverity::warning}) {
        if (tint(severity) == level) {
            return symbolName(severity);
        }
    }
    return {};
}

Tint cpuTint(const CPUInfo& cpu, const MetricThresholds& thresholds) {
    return levelTint(cpu.usagePercentage, thresholds.cpuNormal, thresholds.cpuHigh);
}

Tint gpuTint(const GPUInfo& gpu, const MetricThresholds& thresholds) {
    return levelTint(gpu.usagePercentage, thresholds.gpuNormal, thresholds.gpuHigh);
}

Tint memoryTint(const MemoryInfo& memory, const MetricThresholds& thresholds) {
    return levelTint(memory.usagePercentage(), thresholds.memoryNormal, thresholds.memoryHigh);
}

Tint storageTint(double usagePercentage, const MetricThresholds& thresholds) {
    return levelTint(usagePercentage, thresholds.storageNormal, thresholds.storageHigh);
}

std::string memoryText(std::uint64_t bytes, const platform::ByteCountFormatter& formatter) {
    constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max();
    return formatter.stringFromByteCount(static_cast<std::int64_t>(std::min(bytes, most)),
                                         platform::CountStyle::memory);
}

std::string fileText(std::int64_t bytes, const platform::ByteCountFormatter& formatter) {
    return formatter.stringFromByteCount(std::max<std::int64_t>(bytes, 0),
                                         platform::CountStyle::file);
}

std::string thermalStateWord(std::int64_t thermalState) {
    switch (thermalState) {
        case 0:
            return "Nominal";
        case 1:
            return "Fair";
        case 2:
            return "Serious";
        case 3:
            return "Critical";
        default:
            return "Unknown";
    }
}

}  // namespace tarnwick
