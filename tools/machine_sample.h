// SPDX-License-Identifier: MIT
// Everything that Tarnwick measures, at one moment.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/records/metric_records.h"
#include "settings/metric_thresholds.h"

namespace tarnwick::probe {

/// One graphics card. A card that did not answer in time has none.
struct GraphicsCardSample {
    /// The kernel's name, such as "card0"; the place on the bus of a card that has none. On systems
    /// without such names the place among the cards, such as "gpu0".
    std::string id;
    /// Empty while unknown, as of a card that has slept since the start.
    std::string model{};
    /// Empty when unknown.
    std::string driver{};
    /// Absent when unknown, as of a card that is never asked.
    std::optional<bool> isAsleep{};
    /// Percent; absent when unknown.
    std::optional<double> usagePercentage{};
};

/// All processes of one name together, but for small ones that do nothing.
struct ApplicationSample {
    /// UTF-8.
    std::string name;
    /// Percent of the whole machine; not a number when unknown.
    double cpuUsage = 0;
    /// Bytes; what processes share counts for each.
    std::uint64_t memoryUsage = 0;
};

/// A record is absent where its source did not answer in time. A figure that is not a number is
/// unknown.
struct MachineSample {
    CPUInfo cpu;
    std::optional<GPUInfo> gpu = GPUInfo{};
    /// Every card that answered, in the order of their numbers.
    std::vector<GraphicsCardSample> gpus{};
    MemoryInfo memory;
    NetworkInfo network;
    std::optional<std::vector<StorageInfo>> storage = std::vector<StorageInfo>{};
    std::optional<BatteryInfo> battery = BatteryInfo{};
    SystemInfo system;
    std::vector<AppProcessInfo> topCPUProcesses;
    std::vector<AppProcessInfo> topMemoryProcesses;
    /// Every application in no order; empty if nobody asked for them.
    std::vector<ApplicationSample> applications{};
    /// 0 nominal, 1 fair, 2 serious, 3 critical; absent also where no sensor tells.
    std::optional<std::int64_t> thermalState{};
    /// Thresholds that the sample is judged by.
    MetricThresholds thresholds{};
};

/// One JSON object without a line break. It holds the records under the names of their fields, and
/// `summary`: the verdict with the sample's thresholds. What is absent and numbers that are not
/// finite become null; bytes that are not UTF-8 are replaced.
std::string reportLine(const MachineSample& sample);

}  // namespace tarnwick::probe
