// SPDX-License-Identifier: MIT
// Parses /proc/meminfo.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/kernel.h"

namespace tarnwick::platform {

/// The lines of /proc/meminfo that the program needs, bytes. A line that is missing, damaged, cut
/// short, negative or too large is absent.
struct MemInfo {
    std::optional<std::uint64_t> memTotal{};
    std::optional<std::uint64_t> memFree{};
    /// What programs could use before anything is swapped out. Since Linux 3.14.
    std::optional<std::uint64_t> memAvailable{};
    std::optional<std::uint64_t> buffers{};
    std::optional<std::uint64_t> cached{};
    std::optional<std::uint64_t> swapTotal{};
    std::optional<std::uint64_t> swapFree{};
    /// Memory that the compressed swap cache occupies.
    std::optional<std::uint64_t> zswap{};
    std::optional<std::uint64_t> anonPages{};
    /// Shared memory and tmpfs; part of `cached`.
    std::optional<std::uint64_t> shmem{};
    std::optional<std::uint64_t> sReclaimable{};
};

MemInfo parseMemInfo(std::string_view text);

/// Absent when one of the two lines is; used swap is never negative.
std::optional<SwapUsage> swapUsageOf(const MemInfo& info);

}  // namespace tarnwick::platform
