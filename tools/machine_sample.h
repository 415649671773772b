// Everything that Tarnwick measures, at one moment.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/records/metric_records.h"

namespace tarnwick::probe {

struct MachineSample {
    CPUInfo cpu;
    GPUInfo gpu;
    MemoryInfo memory;
    NetworkInfo network;
    std::vector<StorageInfo> storage;
    BatteryInfo battery;
    SystemInfo system;
    std::vector<AppProcessInfo> topCPUProcesses;
    std::vector<AppProcessInfo> topMemoryProcesses;
    /// 0 nominal, 1 fair, 2 serious, 3 critical.
    std::int64_t thermalState = 0;
};

/// One JSON object without a line break. It holds the records under the names of their fields, and
/// `summary`: the verdict with the default thresholds. Absent optionals and numbers that are not
/// finite become null; bytes that are not UTF-8 are replaced.
std::string reportLine(const MachineSample& sample);

}  // namespace tarnwick::probe
