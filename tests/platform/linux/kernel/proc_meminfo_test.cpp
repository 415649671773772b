// SPDX-License-Identifier: MIT
#include "platform/linux/kernel/proc_meminfo.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using testing::recordedFile;

constexpr std::uint64_t kKibibyte = 1024;

TEST(MemInfo, ReadsTheLinesItNeedsInBytes) {
    const MemInfo info = parseMemInfo(recordedFile("laptop", "proc/meminfo"));
    EXPECT_EQ(info.memTotal, 16122588 * kKibibyte);
    EXPECT_EQ(info.memFree, 1284532 * kKibibyte);
    EXPECT_EQ(info.memAvailable, 7310244 * kKibibyte);
    EXPECT_EQ(info.buffers, 412816 * kKibibyte);
    EXPECT_EQ(info.cached, 6120948 * kKibibyte);
    EXPECT_EQ(info.swapTotal, 8061288 * kKibibyte);
    EXPECT_EQ(info.swapFree, 6904008 * kKibibyte);
    EXPECT_EQ(info.zswap, 65536 * kKibibyte);
    EXPECT_EQ(info.anonPages, 5340112 * kKibibyte);
    EXPECT_EQ(info.shmem, 948420 * kKibibyte);
    EXPECT_EQ(info.sReclaimable, 561224 * kKibibyte);
}

TEST(MemInfo, LinesMayComeInAnyOrder) {
    const MemInfo info = parseMemInfo(
        "Shmem: 1 kB\nMemFree: 2 kB\nSwapCached: 9 kB\nMemTotal: 3 kB\nCached: 4 kB\n");
    EXPECT_EQ(info.shmem, 1 * kKibibyte);
    EXPECT_EQ(info.memFree, 2 * kKibibyte);
    EXPECT_EQ(info.memTotal, 3 * kKibibyte);
    EXPECT_EQ(info.cached, 4 * kKibibyte);
}

TEST(MemInfo, LinesOfANewerKernelAreAbsentInAnOldOne) {
    const MemInfo info = parseMemInfo(recordedFile("old-kernel", "proc/meminfo"));
    EXPECT_EQ(info.memTotal, 1035344 * kKibibyte);
    EXPECT_EQ(info.anonPages, 187620 * kKibibyte);
    EXPECT_EQ(info.memAvailable, std::nullopt);
    EXPECT_EQ(info.shmem, std::nullopt);
    EXPECT_EQ(info.sReclaimable, std::nullopt);
    EXPECT_EQ(info.zswap, std::nullopt);
}

TEST(MemInfo, DamagedLinesAreAbsent) {
    for (const std::string_view line :
         {"MemTotal:", "MemTotal: kB\n", "MemTotal: 5\n", "MemTotal: 5 MB\n", "MemTotal: 5 kB",
          "MemTotal: -5 kB\n", "MemTotal: x kB\n", "MemTotal: 5 kBx\n", "MemTotal 5 kB\n",
          "MemTotal:\t5 kB\n", "MemTotal: 0x5 kB\n", "xMemTotal: 5 kB\n", "MemTotal: 5.0 kB\n"}) {
        EXPECT_EQ(parseMemInfo(line).memTotal, std::nullopt) << line;
    }
    const MemInfo info = parseMemInfo(recordedFile("damaged", "proc/meminfo"));
    for (const auto& field :
         {info.memTotal, info.memFree, info.memAvailable, info.buffers, info.cached, info.swapTotal,
          info.swapFree, info.zswap, info.anonPages, info.shmem, info.sReclaimable}) {
        EXPECT_EQ(field, std::nullopt);
    }
}

TEST(MemInfo, FiguresAboveAnExbibyteAreAbsent) {
    EXPECT_EQ(parseMemInfo("MemTotal: 1125899906842624 kB\n").memTotal, std::uint64_t{1} << 60);
    for (const std::string_view line :
         {"MemTotal: 1125899906842625 kB\n", "MemTotal: 18446744073709551612 kB\n",
          "MemTotal: 18446744073709551616 kB\n", "MemTotal: 99999999999999999999999999 kB\n"}) {
        EXPECT_EQ(parseMemInfo(line).memTotal, std::nullopt) << line;
    }
}

TEST(MemInfo, ATruncatedTextGivesEachFigureWholeOrNotAtAll) {
    for (const std::string_view machine : {"laptop", "server", "old-kernel"}) {
        const std::string text = recordedFile(machine, "proc/meminfo");
        const MemInfo whole = parseMemInfo(text);
        for (std::size_t size = 0; size < text.size(); ++size) {
            const MemInfo part = parseMemInfo(std::string_view(text).substr(0, size));
            for (const auto field :
                 {&MemInfo::memTotal, &MemInfo::memFree, &MemInfo::memAvailable, &MemInfo::buffers,
                  &MemInfo::cached, &MemInfo::swapTotal, &MemInfo::swapFree, &MemInfo::zswap,
                  &MemInfo::anonPages, &MemInfo::shmem, &MemInfo::sReclaimable}) {
                ASSERT_TRUE(part.*field == std::nullopt || part.*field == whole.*field)
                    << machine << size;
            }
        }
    }
}

TEST(SwapUsage, IsWhatIsNotFree) {
    MemInfo info;
    info.swapTotal = 100;
    info.swapFree = 30;
    const std::optional<SwapUsage> usage = swapUsageOf(info);
    ASSERT_TRUE(usage);
    EXPECT_EQ(usage->total, 100U);
    EXPECT_EQ(usage->available, 30U);
    EXPECT_EQ(usage->used, 70U);
}

TEST(SwapUsage, IsNeverNegativeAndNeedsBothLines) {
    MemInfo info;
    info.swapTotal = 100;
    EXPECT_FALSE(swapUsageOf(info));
    info.swapFree = 130;
    ASSERT_TRUE(swapUsageOf(info));
    EXPECT_EQ(swapUsageOf(info)->used, 0U);
    EXPECT_EQ(swapUsageOf(info)->available, 100U);
    info.swapTotal.reset();
    EXPECT_FALSE(swapUsageOf(info));
}

}  // namespace
}  // namespace tarnwick::platform
