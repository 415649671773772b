// SPDX-License-Identifier: MIT
#include "services/gpu_service.h"

#include <string>
#include <utility>

#include "platform/platform.h"
#include "services/gpu_candidate.h"

namespace tarnwick {

GPUService::GPUService(platform::Accelerators& accelerators, platform::Logger logger)
    : accelerators_(accelerators), logger_(logger) {}

GPUService& GPUService::shared() {
    static GPUService& service = *new GPUService(*platform::current().accelerators);
    return service;
}

GPUInfo GPUService::readGPUInfo() {
    return answeredGPUInfo().value_or(GPUInfo{});
}

std::optional<GPUInfo> GPUService::answeredGPUInfo() {
    const platform::MatchingServices found = accelerators_.matchingServices();
    if (found.result != 0) {
        logger_.error("IOServiceGetMatchingServices(IOAccelerator) failed with result: " +
                      std::to_string(found.result));
        return GPUInfo{};
    }
    std::optional<GPUInfo> best;
    for (const platform::PropertyDictionary& service : found.services) {
        std::optional<GPUInfo> candidate = gpuCandidate(service);
        if (candidate && candidate->isAvailable && (!best || isBetterGPU(*candidate, *best))) {
            best = std::move(candidate);
        }
    }
    return best || found.silent > 0 ? best : GPUInfo{};
}

}  // namespace tarnwick
