// What the figures of a file system mean in bytes.
#pragma once

#include <cstdint>
#include <sys/statvfs.h>

namespace tarnwick::platform {

/// Bytes; from 0 to the largest number that fits.
struct VolumeCapacity {
    /// What is in use and what is available. Free blocks that are kept for the system are neither,
    /// as with df, whose Used and Use% follow from these two.
    std::int64_t total = 0;
    /// For a user without privileges; 0 where only the system's reserve is left.
    std::int64_t available = 0;
    /// Tells one file system from another.
    unsigned long fileSystem = 0;
};

VolumeCapacity volumeCapacity(const struct statvfs& figures);

}  // namespace tarnwick::platform
