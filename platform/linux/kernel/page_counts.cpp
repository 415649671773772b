// SPDX-License-Identifier: MIT
#include "platform/linux/kernel/page_counts.h"

#include <algorithm>
#include <limits>

namespace tarnwick::platform {

namespace {

std::uint32_t count(std::uint64_t pages) {
    return static_cast<std::uint32_t>(
        std::min<std::uint64_t>(pages, std::numeric_limits<std::uint32_t>::max()));
}

}  // namespace

std::optional<VMStatistics> vmStatistics(const MemInfo& info, const UnnamedMemory& unnamed,
                                         std::uint64_t pageSize) {
    if (!info.memTotal || !info.memFree || *info.memTotal == 0 || *info.memFree > *info.memTotal ||
        pageSize == 0) {
        return std::nullopt;
    }
    const auto pages = [&](const std::optional<std::uint64_t>& figure) {
        return figure && *figure <= *info.memTotal ? *figure / pageSize : 0;
    };
    const std::uint64_t total = *info.memTotal / pageSize;
    const std::uint64_t free = *info.memFree / pageSize;
    // The page cache holds shared memory too, which only swapping could free.
    const std::uint64_t shared = pages(info.shmem) <= pages(info.cached) ? pages(info.shmem) : 0;
    std::uint64_t files =
        pages(info.buffers) + pages(info.cached) - shared + pages(info.sReclaimable);

    std::uint64_t available = std::min(total, free + files);
    if (info.memAvailable) {
        available = *info.memAvailable <= *info.memTotal ? pages(info.memAvailable) : free;
    }
    // A larger cache than what is in use belongs to another machine: the container's host.
    if (const std::uint64_t cache = pages(unnamed.zfsCache); cache <= total - available) {
        available += cache;
        files += cache;
    }
    const std::uint64_t used = total - available;
    const std::uint64_t freeForUse = std::min(free, available);
    const std::uint64_t compressor = std::min(used, pages(info.zswap) + pages(unnamed.zram));
    const std::uint64_t internal =
        std::min(used - compressor,
                 info.anonPages.value_or(0) / pageSize + info.shmem.value_or(0) / pageSize);

    VMStatistics statistics;
    statistics.free_count = count(freeForUse);
    statistics.wire_count = count(used - compressor - internal);
    statistics.compressor_page_count = count(compressor);
    statistics.external_page_count = count(std::min(available - freeForUse, files));
    statistics.internal_page_count = count(internal);
    return statistics;
}

}  // namespace tarnwick::platform
