// SPDX-License-Identifier: MIT
#include "platform/linux/kernel/processor_counts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A processor with these columns: user, nice, system, idle and so on.
using Columns = std::array<std::uint64_t, ProcessorTicks::columnCount>;

TEST(ProcessorCounts, BeginAtZeroAndGoOnWithTheKernels) {
    ProcessorCounts counts;
    EXPECT_THAT(counts.words({{0, {1, 2, 3, 4}}, {2, {5, 6, 7, 8}}}),
                ElementsAre(0, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(counts.words({{0, {9, 2, 3, 5}}, {2, {5, 16, 7, 8}}}),
                ElementsAre(8, 0, 1, 0, 0, 0, 0, 10));
    EXPECT_THAT(counts.words({{0, {9, 2, 6, 5}}, {2, {5, 16, 7, 9}}}),
                ElementsAre(8, 3, 1, 0, 0, 0, 1, 10));
}

TEST(ProcessorCounts, EachColumnBelongsToOneWord) {
    ProcessorCounts counts;
    counts.words({{0, Columns{}}});
    // user nice system idle iowait irq softirq steal
    EXPECT_THAT(counts.words({{0, {1, 20, 300, 4000, 50000, 7, 80, 900}}}),
                ElementsAre(1, 300 + 7 + 80 + 900, 4000 + 50000, 20));
}

TEST(ProcessorCounts, AColumnThatWentBackwardsTakesNothingFromTheOthers) {
    ProcessorCounts counts;
    counts.words({{0, {10, 0, 100, 1000, 500}}});
    EXPECT_THAT(counts.words({{0, {15, 0, 90, 1005, 400, 2}}}), ElementsAre(5, 2, 5, 0));
    // It goes on from where it went back to.
    EXPECT_THAT(counts.words({{0, {15, 0, 91, 1005, 410, 2}}}), ElementsAre(5, 3, 15, 0));
}

TEST(ProcessorCounts, CountersMayPassThirtyTwoBits) {
    ProcessorCounts counts;
    constexpr std::uint64_t limit = std::uint64_t{1} << 32;
    counts.words({{0, {limit - 1, 0, 7 * limit, 0}}});
    EXPECT_THAT(counts.words({{0, {limit + 4, 0, 7 * limit + 9, 0}}}), ElementsAre(5, 9, 0, 0));
}

TEST(ProcessorCounts, AllBeginAtZeroAgainWhereOneWouldWrap) {
    ProcessorCounts counts;
    constexpr std::uint32_t most = 0xffffffff;
    counts.words({{0, {}}, {1, {}}});
    EXPECT_THAT(counts.words({{0, {5, 0, 0, most}}, {1, {6, 0, 0, 7}}}),
                ElementsAre(5, 0, most, 0, 6, 0, 7, 0));
    EXPECT_THAT(counts.words({{0, {6, 0, 0, most + 1ULL}}, {1, {6, 0, 0, 207}}}),
                ElementsAre(0, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(counts.words({{0, {7, 0, 0, most + 200ULL}}, {1, {8, 0, 0, 407}}}),
                ElementsAre(1, 0, 199, 0, 2, 0, 200, 0));
}

TEST(ProcessorCounts, WhenOneLeavesTheOthersGoOnByTheirOwnTicks) {
    ProcessorCounts counts;
    counts.words({{0, {10, 0, 0, 100}}, {1, {20, 0, 0, 200}}, {2, {500, 0, 0, 90}}});
    counts.words({{0, {11, 0, 0, 100}}, {1, {22, 0, 0, 200}}, {2, {500, 0, 0, 90}}});
    // Processor 2 worked 3 ticks and idled 4; it is now at the second position.
    EXPECT_THAT(counts.words({{0, {11, 0, 0, 101}}, {2, {503, 0, 0, 94}}}),
                ElementsAre(1, 0, 1, 0, 5, 0, 4, 0));
}

TEST(ProcessorCounts, WhenOneComesBackEachPositionGoesOnFromWhatItShowed) {
    ProcessorCounts counts;
    counts.words({{0, {10}}, {2, {500}}});
    counts.words({{0, {10}}, {2, {503}}});
    EXPECT_THAT(counts.words({{0, {10}}, {1, {7000}}, {2, {505}}}),
                ElementsAre(0, 0, 0, 0, 3, 0, 0, 0, 2, 0, 0, 0));
    EXPECT_THAT(counts.words({{0, {10}}, {1, {7002}}, {2, {505}}}),
                ElementsAre(0, 0, 0, 0, 5, 0, 0, 0, 2, 0, 0, 0));
}

TEST(ProcessorCounts, NoProcessorsGiveNoWords) {
    ProcessorCounts counts;
    EXPECT_THAT(counts.words({}), IsEmpty());
    EXPECT_THAT(counts.words({{3, {1, 2, 3, 4}}}), ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(counts.words({}), IsEmpty());
}

}  // namespace
}  // namespace tarnwick::platform
