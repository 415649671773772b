#include "platform/linux/volumes/volume_capacity.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

namespace tarnwick::platform {
namespace {

constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();

struct Blocks {
    std::uint64_t all = 0;
    std::uint64_t free = 0;
    /// Of the free ones those that a user may fill.
    std::uint64_t available = 0;
};

VolumeCapacity capacity(const Blocks& blocks, std::uint64_t blockSize = 4096) {
    struct statvfs figures {};
    // The size that files are read in, not the unit of the counts.
    figures.f_bsize = 65536;
    figures.f_frsize = blockSize;
    figures.f_blocks = blocks.all;
    figures.f_bfree = blocks.free;
    figures.f_bavail = blocks.available;
    figures.f_fsid = 77;
    return volumeCapacity(figures);
}

std::int64_t used(const VolumeCapacity& capacity) {
    return capacity.total - capacity.available;
}

TEST(VolumeCapacity, CountsBlocksThatAUserMayFill) {
    const VolumeCapacity found = capacity({.all = 1000, .free = 300, .available = 300});
    EXPECT_EQ(found.total, 4096000);
    EXPECT_EQ(found.available, 1228800);
    EXPECT_EQ(used(found), 700 * 4096);
    EXPECT_EQ(found.fileSystem, 77U);
}

TEST(VolumeCapacity, TheSystemsReserveIsNeitherUsedNorAvailable) {
    // A disk of 252 GB: the system keeps 156 of them, and 16 are in use; df says 17 %.
    const VolumeCapacity found =
        capacity({.all = 66'053'021, .free = 61'908'480, .available = 20'971'520});
    EXPECT_EQ(used(found), 4'144'541LL * 4096);
    EXPECT_EQ(found.available, 20'971'520LL * 4096);
    EXPECT_EQ(found.total, (4'144'541LL + 20'971'520) * 4096);
    EXPECT_NEAR(100.0 * static_cast<double>(used(found)) / static_cast<double>(found.total), 16.5,
                0.01);
}

TEST(VolumeCapacity, ANegativeCountOfBlocksLeavesNothing) {
    // Only the reserve is left, and some of it is in use: full for everybody but the system.
    const VolumeCapacity found =
        capacity({.all = 1000, .free = 30, .available = static_cast<std::uint64_t>(-20)});
    EXPECT_EQ(found.available, 0);
    EXPECT_EQ(found.total, 970 * 4096);
}

TEST(VolumeCapacity, MoreFreeBlocksThanThereAreMeansThatNoneIsUsed) {
    const VolumeCapacity found = capacity({.all = 1000, .free = 1001, .available = 900});
    EXPECT_EQ(found.total, 900 * 4096);
    EXPECT_EQ(found.available, 900 * 4096);
}

TEST(VolumeCapacity, NothingAtAllIsNoCapacity) {
    const VolumeCapacity found = capacity({.all = 0, .free = 0, .available = 0});
    EXPECT_EQ(found.total, 0);
    EXPECT_EQ(found.available, 0);
}

TEST(VolumeCapacity, CountsTooLargeSaturate) {
    constexpr std::uint64_t kTooMany = std::uint64_t{1} << 51;
    EXPECT_EQ(capacity({.all = kTooMany, .free = 0, .available = 0}).total, kLargest);
    EXPECT_EQ(capacity({.all = kTooMany - 1, .free = 0, .available = 0}).total, kLargest - 4095);
    // Either would fit, their sum does not.
    const VolumeCapacity sum =
        capacity({.all = kTooMany + 10, .free = kTooMany / 2, .available = kTooMany / 2 + 10});
    EXPECT_EQ(sum.total, kLargest);
    EXPECT_EQ(sum.available, static_cast<std::int64_t>(kTooMany / 2 + 10) * 4096);
    const VolumeCapacity most =
        capacity({.all = ~std::uint64_t{0}, .free = 0, .available = std::uint64_t{1} << 62});
    EXPECT_EQ(most.total, kLargest);
    EXPECT_EQ(most.available, kLargest);
}

TEST(VolumeCapacity, BlocksWithoutASizeAreNoCapacity) {
    const VolumeCapacity found = capacity({.all = 1000, .free = 350, .available = 300}, 0);
    EXPECT_EQ(found.total, 0);
    EXPECT_EQ(found.available, 0);
}

}  // namespace
}  // namespace tarnwick::platform
