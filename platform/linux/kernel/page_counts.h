// SPDX-License-Identifier: MIT
// What the pages of the memory are used for.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/kernel.h"
#include "platform/linux/kernel/proc_meminfo.h"

namespace tarnwick::platform {

/// Memory that /proc/meminfo does not name, bytes.
struct UnnamedMemory {
    /// What compressed swap devices occupy.
    std::uint64_t zram = 0;
    /// What the cache of ZFS would give back.
    std::uint64_t zfsCache = 0;
};

/// Divides the memory up so that what is in use (internal, compressor and wired together) is the
/// total less what is available, and that all counts together never exceed the total.
///
/// Absent if the total or the free memory is unknown, or the two contradict each other. A figure
/// that cannot be true of this machine, as a container may show them of its host, is left out or
/// cut.
std::optional<VMStatistics> vmStatistics(const MemInfo& info, const UnnamedMemory& unnamed,
                                         std::uint64_t pageSize);

}  // namespace tarnwick::platform
