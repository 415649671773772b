#include "core/metric_sources.h"

#include "platform/platform.h"
#include "services/cpu_service.h"
#include "services/gpu_service.h"
#include "services/memory_service.h"
#include "services/network_service.h"
#include "services/process_service.h"
#include "services/storage_service.h"
#include "services/system_uptime.h"

namespace tarnwick {

MetricSources MetricSources::shared() {
    platform::Kernel& kernel = *platform::current().kernel;
    platform::Volumes& volumes = *platform::current().volumes;
    return {
        .readCPUInfo = [] { return CPUService::shared().readCPUInfo(); },
        .readGPUInfo = [] { return GPUService::shared().readGPUInfo(); },
        .readMemoryInfo = [] { return MemoryService::shared().readMemoryInfo(); },
        .readNetworkInfo = [] { return NetworkService::shared().readNetworkInfo(); },
        .readTopProcesses =
            [](int limit) { return ProcessService::shared().readTopProcesses(limit); },
        .pruneStaleProcesses = [] { ProcessService::shared().pruneStaleProcesses(); },
        .releaseProcessCaches = [] { ProcessService::shared().releaseCaches(); },
        .readStorageInfo = [&volumes] { return StorageService(volumes).readStorageInfo(); },
        .readUptime = [&kernel] { return tarnwick::readUptime(kernel); },
    };
}

}  // namespace tarnwick
