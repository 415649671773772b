// SPDX-License-Identifier: MIT
// The samplers that the stats manager calls, one function each.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "core/records/metric_records.h"
#include "services/top_process_lists.h"

namespace tarnwick {

/// Called in the background. No function fails.
struct MetricSources {
    std::function<CPUInfo()> readCPUInfo;
    std::function<GPUInfo()> readGPUInfo;
    std::function<MemoryInfo()> readMemoryInfo;
    std::function<NetworkInfo()> readNetworkInfo;
    /// The argument is the most rows that each list may have.
    std::function<TopProcessLists(int)> readTopProcesses;
    std::function<void()> pruneStaleProcesses;
    /// No process lists are wanted at present: frees what they keep between two calls.
    std::function<void()> releaseProcessCaches;
    /// Absent when the volume does not answer.
    std::function<std::optional<StorageInfo>()> readStorageInfo;
    /// As ProcessInfo::thermalState(); unknown also when the sensors do not answer.
    std::function<std::int64_t()> readThermalState;
    /// Seconds since boot.
    std::function<double()> readUptime;

    /// The process-wide samplers on the current platform.
    static MetricSources shared();
};

}  // namespace tarnwick
