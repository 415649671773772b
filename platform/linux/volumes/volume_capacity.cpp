// SPDX-License-Identifier: MIT
#include "platform/linux/volumes/volume_capacity.h"

#include <algorithm>
#include <limits>

namespace tarnwick::platform {

namespace {

constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();

std::int64_t bytesOf(std::uint64_t blocks, std::uint64_t blockSize) {
    if (blockSize != 0 && blocks > static_cast<std::uint64_t>(kLargest) / blockSize) {
        return kLargest;
    }
    return static_cast<std::int64_t>(blocks * blockSize);
}

}  // namespace

VolumeCapacity volumeCapacity(const struct statvfs& figures) {
    // Some file systems report a negative count while blocks of the system's reserve are in use.
    const bool negative = static_cast<std::int64_t>(figures.f_bavail) < 0;
    const std::int64_t available = negative ? 0 : bytesOf(figures.f_bavail, figures.f_frsize);
    // Some network file systems report more free blocks than there are blocks.
    const bool hasUsed = figures.f_blocks > figures.f_bfree;
    const std::int64_t used =
        hasUsed ? bytesOf(figures.f_blocks - figures.f_bfree, figures.f_frsize) : 0;
    return {.total = used > kLargest - available ? kLargest : used + available,
            .available = available,
            .fileSystem = figures.f_fsid};
}

VolumeCapacity withinQuota(const VolumeCapacity& capacity, const UserQuota& quota) {
    std::uint64_t limit = std::min(quota.softLimit, quota.hardLimit);
    if (limit == 0) {
        limit = std::max(quota.softLimit, quota.hardLimit);
    }
    if (limit == 0 || limit >= static_cast<std::uint64_t>(capacity.total)) {
        return capacity;
    }
    const std::uint64_t left = limit - std::min(limit, quota.used);
    const std::uint64_t available = std::min(static_cast<std::uint64_t>(capacity.available), left);
    const std::uint64_t used =
        std::min(quota.used, static_cast<std::uint64_t>(kLargest) - available);
    return {.total = static_cast<std::int64_t>(used + available),
            .available = static_cast<std::int64_t>(available),
            .fileSystem = capacity.fileSystem};
}

}  // namespace tarnwick::platform
