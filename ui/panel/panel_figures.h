// How the pages of the panel write and colour their figures.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/records/metric_records.h"
#include "core/records/tint.h"
#include "platform/byte_count_formatter.h"
#include "settings/metric_thresholds.h"

namespace tarnwick {

/// Red at or above `high`, else yellow at or above `normal`, else green.
Tint levelTint(double value, double normal, double high);

/// Symbol that stands beside a figure of that colour, so that the level is told by more than the
/// colour; empty for green, which is as it should be, and for colours that are no level.
std::string_view levelMark(Tint tint);

// The level of a metric of now.
Tint cpuTint(const CPUInfo& cpu, const MetricThresholds& thresholds);
Tint gpuTint(const GPUInfo& gpu, const MetricThresholds& thresholds);
Tint memoryTint(const MemoryInfo& memory, const MetricThresholds& thresholds);
Tint storageTint(double usagePercentage, const MetricThresholds& thresholds);

/// In the memory style; counts beyond the signed range read as its greatest.
std::string memoryText(std::uint64_t bytes, const platform::ByteCountFormatter& formatter);
/// In the file style; negative counts read as 0.
std::string fileText(std::int64_t bytes, const platform::ByteCountFormatter& formatter);

/// The word for 0 nominal, 1 fair, 2 serious, 3 critical; "Unknown" for anything else.
std::string thermalStateWord(std::int64_t thermalState);

}  // namespace tarnwick
