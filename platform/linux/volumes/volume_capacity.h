// What the figures of a file system mean in bytes.
#pragma once

#include <cstdint>
#include <sys/statvfs.h>

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

}  // namespace tarnwick::platform
