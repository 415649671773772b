// SPDX-License-Identifier: MIT
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

/// The symbol beside a figure of that colour, so that the level does not depend on the colour
/// alone. Empty for green, which needs no mark, and for colours that are not a level.
std::string_view levelMark(Tint tint);

// The level of each metric at present.
Tint cpuTint(const CPUInfo& cpu, const MetricThresholds& thresholds);
Tint gpuTint(const GPUInfo& gpu, const MetricThresholds& thresholds);
Tint memoryTint(const MemoryInfo& memory, const MetricThresholds& thresholds);
Tint storageTint(double usagePercentage, const MetricThresholds& thresholds);

/// In the memory style. Counts beyond the signed range are shown as its largest value.
std::string memoryText(std::uint64_t bytes, const platform::ByteCountFormatter& formatter);
/// In the file style; negative counts read as 0.
std::string fileText(std::int64_t bytes, const platform::ByteCountFormatter& formatter);

/// The word for 0 nominal, 1 fair, 2 serious, 3 critical; "Unknown" for anything else.
std::string thermalStateWord(std::int64_t thermalState);

}  // namespace tarnwick
