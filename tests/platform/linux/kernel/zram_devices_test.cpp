#include "platform/linux/kernel/zram_devices.h"

#include <gtest/gtest.h>
#include <limits>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

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

}  // namespace
}  // namespace tarnwick::platform
