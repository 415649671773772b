// SPDX-License-Identifier: MIT
// What the figures of a file system mean in bytes.
#pragma once

#include <cstdint>
#include <sys/statvfs.h>

#include "platform/linux/volumes/file_system_calls.h"

namespace tarnwick::platform {

/// Bytes; from 0 to the largest number that fits.
struct VolumeCapacity {
    /// Used and available space together. Free blocks that are reserved for the system are not part
    /// of it; df computes its Used and Use% in the same way.
    std::int64_t total = 0;
    /// For a user without privileges; 0 where only the system's reserve is left.
    std::int64_t available = 0;
    /// Identifies the file system.
    unsigned long fileSystem = 0;
};

VolumeCapacity volumeCapacity(const struct statvfs& figures);

/// The part of the file system that is this user's: what the user has used and may still fill.
/// Without a limit below the capacity it is all of it.
VolumeCapacity withinQuota(const VolumeCapacity& capacity, const UserQuota& quota);

}  // namespace tarnwick::platform
