// SPDX-License-Identifier: MIT
#include "platform/linux/kernel/page_counts.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <random>

namespace tarnwick::platform {
namespace {

constexpr std::uint64_t page = 4096;

MemInfo pages(std::uint64_t total, std::uint64_t free) {
    MemInfo info;
    info.memTotal = total * page;
    info.memFree = free * page;
    return info;
}

std::uint64_t inUse(const VMStatistics& counts) {
    return std::uint64_t{counts.internal_page_count} + counts.wire_count +
           counts.compressor_page_count;
}

TEST(VMStatistics, WhatIsNotAvailableIsInUse) {
    MemInfo info = pages(1000, 100);
    info.memAvailable = 240 * page;
    info.buffers = 10 * page;
    info.cached = 200 * page;
    info.sReclaimable = 30 * page;
    info.shmem = 50 * page;
    info.anonPages = 300 * page;
    info.zswap = 7 * page;
    const auto counts = vmStatistics(info, {.zram = 20 * page}, page);
    ASSERT_TRUE(counts);
    EXPECT_EQ(inUse(*counts), 1000U - 240U);
    EXPECT_EQ(counts->free_count, 100U);
    EXPECT_EQ(counts->external_page_count, 140U);
    EXPECT_EQ(counts->internal_page_count, 300U + 50U);
    EXPECT_EQ(counts->compressor_page_count, 27U);
    EXPECT_EQ(counts->wire_count, 760U - 350U - 27U);
    EXPECT_EQ(counts->purgeable_count, 0U);
    EXPECT_EQ(counts->speculative_count, 0U);
}

TEST(VMStatistics, OldKernelsHaveTheFilesPagesAvailable) {
    MemInfo info = pages(1000, 100);
    info.buffers = 10 * page;
    info.cached = 200 * page;
    info.sReclaimable = 30 * page;
    info.shmem = 50 * page;
    info.anonPages = 300 * page;
    const auto counts = vmStatistics(info, {}, page);
    ASSERT_TRUE(counts);
    EXPECT_EQ(counts->free_count, 100U);
    EXPECT_EQ(counts->external_page_count, 10U + 200U + 30U - 50U);
    EXPECT_EQ(inUse(*counts), 1000U - 100U - 190U);
    EXPECT_EQ(counts->wire_count, 710U - 350U);
}

TEST(VMStatistics, SharedMemoryOfAContainersHostIsNotPartOfTheCache) {
    MemInfo info = pages(1000, 100);
    info.memAvailable = 400 * page;
    info.cached = 200 * page;
    info.sReclaimable = 30 * page;
    info.shmem = 500 * page;
    EXPECT_EQ(vmStatistics(info, {}, page)->external_page_count, 230U);
    info.memAvailable.reset();
    EXPECT_EQ(vmStatistics(info, {}, page)->external_page_count, 230U);
}

TEST(VMStatistics, NoMoreIsCachedThanFilesHave) {
    MemInfo info = pages(1000, 100);
    info.memAvailable = 600 * page;
    info.cached = 200 * page;
    const auto counts = vmStatistics(info, {}, page);
    ASSERT_TRUE(counts);
    EXPECT_EQ(counts->external_page_count, 200U);
    EXPECT_EQ(inUse(*counts), 400U);
}

TEST(VMStatistics, WhatIsFreeButNotAvailableIsInUse) {
    MemInfo info = pages(1000, 900);
    info.memAvailable = 850 * page;
    info.cached = 20 * page;
    const auto counts = vmStatistics(info, {}, page);
    ASSERT_TRUE(counts);
    EXPECT_EQ(counts->free_count, 850U);
    EXPECT_EQ(counts->external_page_count, 0U);
    EXPECT_EQ(inUse(*counts), 150U);
}

TEST(VMStatistics, MoreAvailableThanThereIsMeansTheFreeMemory) {
    MemInfo info = pages(1000, 100);
    info.memAvailable = 1001 * page;
    info.cached = 200 * page;
    const auto counts = vmStatistics(info, {}, page);
    ASSERT_TRUE(counts);
    EXPECT_EQ(inUse(*counts), 900U);
    EXPECT_EQ(counts->external_page_count, 0U);
}

TEST(VMStatistics, AppsAndTheCompressorFitIntoWhatIsInUse) {
    MemInfo info = pages(1000, 100);
    info.memAvailable = 500 * page;
    info.anonPages = 5000 * page;
    info.shmem = 2000 * page;
    info.zswap = 30 * page;
    auto counts = vmStatistics(info, {}, page);
    ASSERT_TRUE(counts);
    EXPECT_EQ(counts->compressor_page_count, 30U);
    EXPECT_EQ(counts->internal_page_count, 470U);
    EXPECT_EQ(counts->wire_count, 0U);
    counts = vmStatistics(info, {.zram = 900 * page}, page);
    ASSERT_TRUE(counts);
    EXPECT_EQ(counts->compressor_page_count, 500U);
    EXPECT_EQ(counts->internal_page_count, 0U);
}

TEST(VMStatistics, TheCacheOfZfsIsAvailable) {
    MemInfo info = pages(1000, 100);
    info.memAvailable = 200 * page;
    info.cached = 150 * page;
    auto counts = vmStatistics(info, {.zfsCache = 600 * page}, page);
    ASSERT_TRUE(counts);
    EXPECT_EQ(inUse(*counts), 200U);
    EXPECT_EQ(counts->external_page_count, 700U);
    // More than what is in use: the cache of another machine.
    counts = vmStatistics(info, {.zfsCache = 801 * page}, page);
    ASSERT_TRUE(counts);
    EXPECT_EQ(inUse(*counts), 800U);
    EXPECT_EQ(counts->external_page_count, 100U);
}

TEST(VMStatistics, LinesThatAreMissingCountAsNothing) {
    const auto counts = vmStatistics(pages(1000, 100), {}, page);
    ASSERT_TRUE(counts);
    EXPECT_EQ(counts->wire_count, 900U);
    EXPECT_EQ(counts->external_page_count, 0U);
    EXPECT_EQ(counts->internal_page_count, 0U);
    EXPECT_EQ(counts->compressor_page_count, 0U);
}

TEST(VMStatistics, FiguresAboveTheTotalCountAsNothing) {
    MemInfo info = pages(1000, 100);
    info.cached = 1001 * page;
    info.zswap = std::uint64_t{1} << 60;
    const auto counts =
        vmStatistics(info, {.zram = std::numeric_limits<std::uint64_t>::max()}, page);
    ASSERT_TRUE(counts);
    EXPECT_EQ(counts->external_page_count, 0U);
    EXPECT_EQ(counts->compressor_page_count, 0U);
    EXPECT_EQ(counts->wire_count, 900U);
}

TEST(VMStatistics, NeedTheTotalAndTheFreeMemory) {
    MemInfo info = pages(1000, 100);
    info.memFree.reset();
    EXPECT_FALSE(vmStatistics(info, {}, page));
    info = pages(1000, 100);
    info.memTotal.reset();
    EXPECT_FALSE(vmStatistics(info, {}, page));
    EXPECT_FALSE(vmStatistics(pages(0, 0), {}, page));
    EXPECT_FALSE(vmStatistics(pages(1000, 1001), {}, page));
    EXPECT_FALSE(vmStatistics(pages(1000, 100), {}, 0));
    EXPECT_TRUE(vmStatistics(pages(1000, 1000), {}, page));
}

TEST(VMStatistics, CountsOfAMachineTooLargeForThemSaturate) {
    const auto counts =
        vmStatistics(pages(std::uint64_t{1} << 47, std::uint64_t{1} << 46), {}, page);
    ASSERT_TRUE(counts);
    EXPECT_EQ(counts->free_count, 0xFFFFFFFFU);
    EXPECT_EQ(counts->wire_count, 0xFFFFFFFFU);
}

TEST(VMStatistics, NeverExceedTheTotalWhateverTheFiguresAre) {
    std::mt19937_64 random(20'260'101);
    int answers = 0;
    for (int turn = 0; turn < 200'000; ++turn) {
        const std::uint64_t largest = std::uint64_t{1} << (random() % 61);
        const auto figure = [&]() -> std::optional<std::uint64_t> {
            return random() % 8 == 0 ? std::nullopt : std::optional(random() % largest);
        };
        const MemInfo info{.memTotal = figure(),
                           .memFree = figure(),
                           .memAvailable = figure(),
                           .buffers = figure(),
                           .cached = figure(),
                           .zswap = figure(),
                           .anonPages = figure(),
                           .shmem = figure(),
                           .sReclaimable = figure()};
        const UnnamedMemory unnamed{.zram = figure().value_or(0), .zfsCache = figure().value_or(0)};
        const auto counts = vmStatistics(info, unnamed, page);
        if (!counts) {
            continue;
        }
        ++answers;
        const std::uint64_t total = *info.memTotal / page;
        ASSERT_LE(inUse(*counts) + counts->free_count + counts->external_page_count, total) << turn;
        if (total <= 0xFFFFFFFF && info.memAvailable && *info.memAvailable <= *info.memTotal &&
            unnamed.zfsCache < page) {
            ASSERT_EQ(inUse(*counts), total - *info.memAvailable / page) << turn;
        }
    }
    EXPECT_GT(answers, 10'000);
}

}  // namespace
}  // namespace tarnwick::platform
