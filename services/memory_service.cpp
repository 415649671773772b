// SPDX-License-Identifier: MIT
#include "services/memory_service.h"

#include <algorithm>
#include <string>

#include "core/records/checked_math.h"
#include "platform/platform.h"

namespace tarnwick {

MemoryService::MemoryService(platform::Kernel& kernel, platform::Logger logger)
    : kernel_(kernel), logger_(logger), pageSize_(kernel.pageSize()) {}

MemoryService& MemoryService::shared() {
    // Never destroyed: background work may still use it while the process ends.
    static MemoryService& service = *new MemoryService(*platform::current().kernel);
    return service;
}

MemoryInfo MemoryService::readMemoryInfo() {
    MemoryInfo info;
    info.total = kernel_.memorySize().value_or(0);

    const platform::HostStatistics answer = kernel_.hostStatistics64();
    if (answer.result != 0) {
        logger_.error("host_statistics64 failed with result: " + std::to_string(answer.result));
        return info;
    }
    if (const auto swap = kernel_.swapUsage()) {
        info.swapUsed = swap->used;
        info.swapTotal = swap->total;
    }

    const platform::VMStatistics& pages = answer.statistics;
    const auto bytes = [this](std::uint32_t count) {
        return checkedMultiply<std::uint64_t>(count, pageSize_);
    };
    // free_count includes the speculative pages, but these hold data that was read ahead.
    info.free = bytes(pages.free_count - std::min(pages.speculative_count, pages.free_count));
    // Purgeable pages belong to applications, but the system may drop them at any time, like a
    // cache.
    const std::uint64_t internal = bytes(pages.internal_page_count);
    const std::uint64_t purgeable = bytes(pages.purgeable_count);
    info.app = internal > purgeable ? checkedSubtract(internal, purgeable) : 0;
    info.wired = bytes(pages.wire_count);
    info.compressed = bytes(pages.compressor_page_count);
    info.cached = checkedAdd(bytes(pages.external_page_count), purgeable);

    info.used = checkedAdd(checkedAdd(info.app, info.wired), info.compressed);
    if (info.total < info.used) {
        // The counts were taken at different moments, or count pages twice. Then everything that is
        // neither free nor cached counts as used, up to the total.
        const std::uint64_t rest = checkedAdd(info.free, info.cached);
        info.used = rest < info.total ? checkedSubtract(info.total, rest) : info.total;
    }
    return info;
}

}  // namespace tarnwick
