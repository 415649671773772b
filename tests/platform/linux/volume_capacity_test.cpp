#include "platform/linux/volume_capacity.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

namespace tarnwick::platform {
namespace {

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

VolumeCapacity capacity(std::uint64_t blocks, std::uint64_t available, std::uint64_t blockSize) {
    struct statvfs figures {};
    // The size that files are read in, not the unit of the counts.
    figures.f_bsize = 65536;
    figures.f_frsize = blockSize;
    figures.f_blocks = blocks;
    // More is free than a user may fill.
    figures.f_bfree = available + 50;
    figures.f_bavail = available;
    figures.f_fsid = 77;
    return volumeCapacity(figures);
}

TEST(VolumeCapacity, CountsBlocksThatAUserMayFill) {
    EXPECT_EQ(capacity(1000, 300, 4096).total, 4096000);
    EXPECT_EQ(capacity(1000, 300, 4096).available, 1228800);
    EXPECT_EQ(capacity(1000, 300, 4096).fileSystem, 77U);
}

TEST(VolumeCapacity, ANegativeCountOfBlocksLeavesNothing) {
    EXPECT_EQ(capacity(1000, static_cast<std::uint64_t>(-20), 4096).available, 0);
}

TEST(VolumeCapacity, CountsTooLargeSaturate) {
    EXPECT_EQ(capacity(std::uint64_t{1} << 51, 1, 4096).total, largest);
    EXPECT_EQ(capacity((std::uint64_t{1} << 51) - 1, 1, 4096).total, largest - 4095);
    EXPECT_EQ(capacity(~std::uint64_t{0}, std::uint64_t{1} << 62, 4096).total, largest);
    EXPECT_EQ(capacity(~std::uint64_t{0}, std::uint64_t{1} << 62, 4096).available, largest);
}

TEST(VolumeCapacity, BlocksWithoutASizeAreNoCapacity) {
    EXPECT_EQ(capacity(1000, 300, 0).total, 0);
    EXPECT_EQ(capacity(1000, 300, 0).available, 0);
}

}  // namespace
}  // namespace tarnwick::platform
