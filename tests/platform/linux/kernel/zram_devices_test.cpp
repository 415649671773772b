// SPDX-License-Identifier: MIT
#include "platform/linux/kernel/zram_devices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::recordedFile;

TEST(ZramMemoryUsed, IsTheThirdNumber) {
    EXPECT_EQ(parseZramMemoryUsed(recordedFile("laptop", "sys/block/zram0/mm_stat")), 318767104U);
    EXPECT_EQ(parseZramMemoryUsed("  1   2   3\n"), 3U);
    EXPECT_EQ(parseZramMemoryUsed("1 2 3 4"), 3U);
    EXPECT_EQ(parseZramMemoryUsed("0 0 18446744073709551615 0\n"),
              std::numeric_limits<std::uint64_t>::max());
}

TEST(ZramMemoryUsed, IsAbsentWhenDamagedOrCutShort) {
    for (const std::string_view text : {"", "\n", "1", "1 2\n", "1 2 3", "1 2 x\n", "1 2 -3\n",
                                        "1 2 3x\n", "x 2 3\n", "1 2 18446744073709551616\n"}) {
        EXPECT_EQ(parseZramMemoryUsed(text), std::nullopt) << text;
    }
}

TEST(ZramSwaps, AreTheDevicesWithSwapOnThem) {
    EXPECT_THAT(parseZramSwaps(recordedFile("memories/zram-in-use", "proc/swaps")),
                ElementsAre("zram0"));
    EXPECT_THAT(parseZramSwaps(recordedFile("memories/zram-unused", "proc/swaps")), IsEmpty());
    EXPECT_THAT(parseZramSwaps(recordedFile("memories/zram-of-the-host", "proc/swaps")), IsEmpty());
    EXPECT_THAT(parseZramSwaps("/dev/zram12\tpartition\t1\t0\t5\n/zram3 file 1 0 5\n"),
                ElementsAre("zram12", "zram3"));
}

TEST(ZramSwaps, OtherNamesAreNone) {
    for (const std::string_view line :
         {"", "\n", "zram0 partition\n", "/dev/zram partition\n", "/dev/zram0x partition\n",
          "/dev/zram0/file file\n", "/dev/xzram0 partition\n", "/dev/zram0 partition"}) {
        EXPECT_THAT(parseZramSwaps(line), IsEmpty()) << line;
    }
}

}  // namespace
}  // namespace tarnwick::platform
