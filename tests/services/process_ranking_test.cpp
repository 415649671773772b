// SPDX-License-Identifier: MIT
#include "services/process_ranking.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace tarnwick {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

AppProcessInfo sample(std::int32_t id, double cpuUsage, std::uint64_t memoryUsage) {
    return {.id = id, .name = "p", .cpuUsage = cpuUsage, .memoryUsage = memoryUsage};
}

std::vector<std::int32_t> idsOf(const std::vector<AppProcessInfo>& rows) {
    std::vector<std::int32_t> ids;
    for (const AppProcessInfo& row : rows) {
        ids.push_back(row.id);
    }
    return ids;
}

TEST(ProcessRanking, KeepsFromEitherThresholdOn) {
    EXPECT_TRUE(isWorthKeeping(0.1, 10));
    EXPECT_TRUE(isWorthKeeping(0, 1'000'000));
    EXPECT_TRUE(isWorthKeeping(100, 0));
    EXPECT_FALSE(isWorthKeeping(0.09, 999'999));
    EXPECT_FALSE(isWorthKeeping(0, 0));
}

TEST(ProcessRanking, AShareThatIsNotANumberKeepsTheProcess) {
    EXPECT_TRUE(isWorthKeeping(kNaN, 0));
}

TEST(ProcessRanking, AShareThatIsNotANumberComesLast) {
    const std::vector samples = {sample(1, kNaN, 0), sample(2, 0, 0), sample(3, kNaN, 0),
                                 sample(4, 5, 0)};
    EXPECT_EQ(idsOf(topByCPU(samples, 4)), (std::vector{4, 2, 1, 3}));
}

TEST(ProcessRanking, WithoutSamplesThereAreNoRows) {
    EXPECT_TRUE(topByCPU({}, 3).empty());
    EXPECT_TRUE(topByMemory({}, 3).empty());
}

TEST(ProcessRanking, ComparesMemoryAsWholeNumbers) {
    // As doubles they are equal.
    constexpr std::uint64_t large = std::uint64_t{1} << 60;
    const std::vector samples = {sample(1, 0, large), sample(2, 0, large + 1)};
    EXPECT_EQ(idsOf(topByMemory(samples, 2)), (std::vector{2, 1}));
}

TEST(ProcessRanking, IsTheBeginningOfAStableSort) {
    std::mt19937 random(7);
    for (const int limit : {0, 1, 3, 50, 400, 1000}) {
        std::vector<AppProcessInfo> samples(400);
        for (std::size_t i = 0; i < samples.size(); ++i) {
            samples[i] = sample(static_cast<std::int32_t>(i), static_cast<double>(random() % 20),
                                random() % 20);
        }
        const auto count = std::min(static_cast<std::size_t>(limit), samples.size());
        std::vector<AppProcessInfo> byCPU = samples;
        std::ranges::stable_sort(byCPU, std::greater(), &AppProcessInfo::cpuUsage);
        byCPU.resize(count);
        EXPECT_EQ(topByCPU(samples, limit), byCPU) << limit;
        std::vector<AppProcessInfo> byMemory = samples;
        std::ranges::stable_sort(byMemory, std::greater(), &AppProcessInfo::memoryUsage);
        byMemory.resize(count);
        EXPECT_EQ(topByMemory(samples, limit), byMemory) << limit;
    }
}

}  // namespace
}  // namespace tarnwick
