// SPDX-License-Identifier: MIT
// Everything that Tarnwick measures, at one moment.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/records/metric_records.h"

namespace tarnwick::probe {

/// A record is absent where its source did not answer in time.
struct MachineSample {
    CPUInfo cpu;
    std::optional<GPUInfo> gpu = GPUInfo{};
    MemoryInfo memory;
    NetworkInfo network;
    std::optional<std::vector<StorageInfo>> storage = std::vector<StorageInfo>{};
    std::optional<BatteryInfo> battery = BatteryInfo{};
    SystemInfo system;
    std::vector<AppProcessInfo> topCPUProcesses;
    std::vector<AppProcessInfo> topMemoryProcesses;
    /// 0 nominal, 1 fair, 2 serious, 3 critical; absent also where no sensor tells.
    std::optional<std::int64_t> thermalState{};
};

/// One JSON object without a line break. It holds the records under the names of their fields, and
/// `summary`: the verdict with the default thresholds. What is absent and numbers that are not
/// finite become null; bytes that are not UTF-8 are replaced.
std::string reportLine(const MachineSample& sample);

}  // namespace tarnwick::probe
