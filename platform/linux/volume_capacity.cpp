#include "platform/linux/volume_capacity.h"

#include <limits>

namespace tarnwick::platform {

namespace {

std::int64_t bytesOf(std::uint64_t blocks, std::uint64_t blockSize) {
    constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
    if (blockSize != 0 && blocks > static_cast<std::uint64_t>(largest) / blockSize) {
        return largest;
    }
    return static_cast<std::int64_t>(blocks * blockSize);
}

}  // namespace

VolumeCapacity volumeCapacity(const struct statvfs& figures) {
    // Where blocks of the system's reserve are in use, some file systems give a negative count.
    const bool negative = static_cast<std::int64_t>(figures.f_bavail) < 0;
    return {.total = bytesOf(figures.f_blocks, figures.f_frsize),
            .available = negative ? 0 : bytesOf(figures.f_bavail, figures.f_frsize),
            .fileSystem = figures.f_fsid};
}

}  // namespace tarnwick::platform
