// SPDX-License-Identifier: MIT
#include "core/metric_sources.h"

#include <memory>

#include "platform/platform.h"
#include "platform/timed_source.h"
#include "services/cpu_service.h"
#include "services/gpu_service.h"
#include "services/memory_service.h"
#include "services/network_service.h"
#include "services/process_service.h"
#include "services/storage_service.h"
#include "services/system_uptime.h"

namespace tarnwick {

MetricSources MetricSources::shared() {
    using platform::TimedSource;
    platform::Kernel& kernel = *platform::current().kernel;
    platform::Volumes& volumes = *platform::current().volumes;
    platform::NetworkInterfaces& interfaces = *platform::current().networkInterfaces;
    platform::ProcessInfo& processInfo = *platform::current().processInfo;
    platform::Workers& workers = *platform::current().workers;
    const auto home =
        std::make_shared<TimedSource<StorageInfo>>(workers, platform::kSourcePatience);
    const auto heat =
        std::make_shared<TimedSource<std::int64_t>>(workers, platform::kSensorPatience);
    const auto traffic =
        std::make_shared<TimedSource<NetworkInfo>>(workers, platform::kSensorPatience);
    return {
        .readCPUInfo = [] { return CPUService::shared().readCPUInfo(); },
        .readGPUInfo = [] { return GPUService::shared().readGPUInfo(); },
        .readMemoryInfo = [] { return MemoryService::shared().readMemoryInfo(); },
        .readNetworkInfo =
            [&interfaces, traffic] {
                const auto read = [] { return NetworkService::shared().readNetworkInfo(); };
                // To wake a worker costs as much as to read what the kernel itself tells.
                return interfaces.mayHang() ? traffic->read(read).value_or(NetworkInfo()) : read();
            },
        .readTopProcesses =
            [](int limit) { return ProcessService::shared().readTopProcesses(limit); },
        .pruneStaleProcesses = [] { ProcessService::shared().pruneStaleProcesses(); },
        .releaseProcessCaches = [] { ProcessService::shared().releaseCaches(); },
        .readStorageInfo =
            [&volumes, home] {
                return home->read([&volumes] { return StorageService(volumes).readStorageInfo(); });
            },
        .readThermalState =
            [&processInfo, heat] {
                return heat->read([&processInfo] { return processInfo.thermalState(); })
                    .value_or(platform::kUnknownThermalState);
            },
        .readUptime = [&kernel] { return tarnwick::readUptime(kernel); },
    };
}

}  // namespace tarnwick
