// The samplers that the stats manager calls, one function each.
#pragma once

#include <functional>

#include "core/records/metric_records.h"
#include "services/top_process_lists.h"

namespace tarnwick {

/// Called in the background; none fails.
struct MetricSources {
    std::function<CPUInfo()> readCPUInfo;
    std::function<GPUInfo()> readGPUInfo;
    std::function<MemoryInfo()> readMemoryInfo;
    std::function<NetworkInfo()> readNetworkInfo;
    /// Takes the greatest number of rows a list may have.
    std::function<TopProcessLists(int)> readTopProcesses;
    std::function<void()> pruneStaleProcesses;
    /// Lets go of what process lists keep between two calls; none is wanted at present.
    std::function<void()> releaseProcessCaches;
    std::function<StorageInfo()> readStorageInfo;
    /// Seconds since boot.
    std::function<double()> readUptime;

    /// The process-wide samplers on the current platform.
    static MetricSources shared();
};

}  // namespace tarnwick
