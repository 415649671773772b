// SPDX-License-Identifier: MIT
#include "platform/linux/volumes/volume_capacity.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <utility>

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

TEST(WithinQuota, IsWhatTheUserHasUsedAndMayFill) {
    const VolumeCapacity all{.total = 1000, .available = 600, .fileSystem = 77};
    const auto within = [&all](const UserQuota& quota) {
        const VolumeCapacity part = withinQuota(all, quota);
        EXPECT_EQ(part.fileSystem, 77U);
        return std::pair(part.total, part.available);
    };
    using Sizes = std::pair<std::int64_t, std::int64_t>;
    EXPECT_EQ(within({.softLimit = 0, .hardLimit = 500, .used = 100}), Sizes(500, 400));
    EXPECT_EQ(within({.softLimit = 300, .hardLimit = 500, .used = 100}), Sizes(300, 200));
    EXPECT_EQ(within({.softLimit = 300, .hardLimit = 0, .used = 100}), Sizes(300, 200));
    // The file system has less than the limit leaves.
    EXPECT_EQ(within({.softLimit = 0, .hardLimit = 900, .used = 100}), Sizes(700, 600));
    // Above the limit, as for a while above the soft one.
    EXPECT_EQ(within({.softLimit = 300, .hardLimit = 500, .used = 350}), Sizes(350, 0));
    EXPECT_EQ(within({.softLimit = 0, .hardLimit = 1, .used = UINT64_MAX}), Sizes(kLargest, 0));
}

TEST(WithinQuota, WithoutALimitBelowTheCapacityIsAllOfIt) {
    const VolumeCapacity all{.total = 1000, .available = 600, .fileSystem = 77};
    for (const UserQuota quota : {UserQuota{.used = 100},
                                  {.softLimit = 1000, .hardLimit = 0, .used = 100},
                                  {.softLimit = UINT64_MAX, .hardLimit = 2000, .used = 100}}) {
        EXPECT_EQ(withinQuota(all, quota).total, 1000);
        EXPECT_EQ(withinQuota(all, quota).available, 600);
    }
    EXPECT_EQ(withinQuota({}, {.hardLimit = 5, .used = 5}).total, 0);
}

}  // namespace
}  // namespace tarnwick::platform
