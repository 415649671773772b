// SPDX-License-Identifier: MIT
#include "platform/linux/kernel/zfs_cache.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using testing::MachineTree;
using testing::recordedFile;

constexpr std::uint64_t kAll = 33'554'432'000;
constexpr std::uint64_t kLeast = 1'073'741'824;
constexpr std::uint64_t kSize = 12'884'901'888;
constexpr const char* path = "proc/spl/kstat/zfs/arcstats";

std::string statistics() {
    return recordedFile("memories/zfs", path);
}

TEST(ZfsCacheFigures, AreWhatIsHeldAboveTheMinimum) {
    EXPECT_EQ(parseZfsCache(statistics(), kAll), kSize - kLeast);
    EXPECT_EQ(parseZfsCache("size 4 10\nc_min 4 10\n", 0), 0U);
    EXPECT_EQ(parseZfsCache("size 4 9\nc_min 4 10\n", 0), 0U);
    EXPECT_EQ(parseZfsCache("c_min 4 3\nsize_x 4 99\nx_size 4 99\nsize 4 10\n", 0), 7U);
}

TEST(ZfsCacheFigures, OfAMachineWithMoreMemoryAreNotOurs) {
    EXPECT_EQ(parseZfsCache(statistics(), kAll - 4096), std::nullopt);
}

TEST(ZfsCacheFigures, AreAbsentWhenDamaged) {
    for (const std::string_view text :
         {"", "size 4 10\n", "c_min 4 3\n", "size 4 10\nc_min 4 3", "size 4 x\nc_min 4 3\n",
          "size 4 \nc_min 4 3\n", "size 4 -1\nc_min 4 3\n", "size\nc_min 4 3\n",
          "size 4 18446744073709551616\nc_min 4 3\n"}) {
        EXPECT_EQ(parseZfsCache(text, 0), std::nullopt) << text;
    }
}

TEST(ZfsCacheFigures, ATruncatedTextGivesTheTrueFigureOrNone) {
    const std::string text = statistics();
    const std::size_t end = text.find('\n', text.find("\nsize ") + 1) + 1;
    for (std::size_t size = 0; size < text.size(); ++size) {
        ASSERT_EQ(parseZfsCache(std::string_view(text).substr(0, size), kAll),
                  size < end ? std::nullopt : std::optional(kSize - kLeast))
            << size;
    }
}

TEST(ZfsCache, IsLookedForWhenTheClockWentBack) {
    const MachineTree tree;
    ZfsCache cache(tree.root());
    EXPECT_EQ(cache.reclaimable(100, kAll), 0U);
    tree.write(path, "size 4 10\nc_min 4 3\n");
    EXPECT_EQ(cache.reclaimable(99, kAll), 7U);
}

TEST(ZfsCache, IsReadAnewAndLookedForEveryMinuteWhereThereIsNone) {
    const MachineTree tree;
    ZfsCache cache(tree.root());
    EXPECT_EQ(cache.reclaimable(100, kAll), 0U);
    tree.write(path, "size 4 10\nc_min 4 3\n");
    EXPECT_EQ(cache.reclaimable(159.9, kAll), 0U);
    EXPECT_EQ(cache.reclaimable(160.1, kAll), 7U);
    tree.write(path, "size 4 12\nc_min 4 3\n");
    EXPECT_EQ(cache.reclaimable(160.2, kAll), 9U);
    tree.write(path, "");
    EXPECT_EQ(cache.reclaimable(160.3, kAll), 0U);
}

}  // namespace
}  // namespace tarnwick::platform
