// Parses /proc/meminfo and zram's mm_stat, and converts their figures to pages.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/kernel.h"

namespace tarnwick::platform {

/// The lines of /proc/meminfo that the program needs, bytes. A line that is missing, damaged, cut
/// short, negative or too large is absent.
struct MemInfo {
    std::optional<std::uint64_t> memTotal;
    std::optional<std::uint64_t> memFree;
    std::optional<std::uint64_t> buffers;
    std::optional<std::uint64_t> cached;
    std::optional<std::uint64_t> swapTotal;
    std::optional<std::uint64_t> swapFree;
    /// Memory that the compressed swap cache occupies.
    std::optional<std::uint64_t> zswap;
    std::optional<std::uint64_t> anonPages;
    /// Shared memory and tmpfs; part of `cached`.
    std::optional<std::uint64_t> shmem;
    std::optional<std::uint64_t> sReclaimable;
};

MemInfo parseMemInfo(std::string_view text);

/// Pages of `pageSize` bytes, rounded to the nearest, at most 2^32 − 1.
std::uint32_t pagesOf(std::uint64_t bytes, std::uint64_t pageSize);

/// The page counts for /proc/meminfo and `zramBytes`. Absent if the total or the free memory is
/// unknown, or the two contradict each other. A figure above the total is wrong and counts as 0.
std::optional<VMStatistics> vmStatistics(const MemInfo& info, std::uint64_t zramBytes,
                                         std::uint64_t pageSize);

/// Absent when one of the two lines is; used swap is never negative.
std::optional<SwapUsage> swapUsageOf(const MemInfo& info);

}  // namespace tarnwick::platform
