// SPDX-License-Identifier: MIT
// The memory that the cache of ZFS holds.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/files/kept_file.h"

namespace tarnwick::platform {

/// How much of its cache ZFS would give back, bytes: what it holds above its minimum. From
/// /proc/spl/kstat/zfs/arcstats. Absent when a line is missing, damaged or cut short, or when the
/// cache is that of a machine with more memory than `memTotal`: the host of this container.
std::optional<std::uint64_t> parseZfsCache(std::string_view arcStats, std::uint64_t memTotal);

/// One thread at a time.
class ZfsCache {
 public:
    explicit ZfsCache(const std::string& root);

    /// 0 where there is no ZFS. `now` is in seconds, `memTotal` in bytes. Looks every minute
    /// whether there is.
    std::uint64_t reclaimable(double now, std::uint64_t memTotal);

 private:
    KeptFile statistics_;
    /// When the file was missing.
    std::optional<double> missingAt_;
};

}  // namespace tarnwick::platform
