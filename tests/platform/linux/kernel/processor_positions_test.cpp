#include "platform/linux/kernel/processor_positions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(ProcessorPositions, CountersPassThroughWhileTheProcessorsStay) {
    ProcessorPositions positions;
    EXPECT_THAT(positions.words({{0, {1, 2, 3, 4}}, {2, {5, 6, 7, 8}}}),
                ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
    EXPECT_THAT(positions.words({{0, {9, 2, 3, 4}}, {2, {5, 0, 7, 8}}}),
                ElementsAre(9, 2, 3, 4, 5, 0, 7, 8));
}

TEST(ProcessorPositions, WhenOneLeavesTheOthersGoOnByTheirOwnTicks) {
    ProcessorPositions positions;
    positions.words({{0, {10, 0, 100, 0}}, {1, {20, 0, 200, 0}}, {2, {500, 0, 90, 0}}});
    // Processor 2 worked 3 ticks and idled 4; it is now at the second position.
    EXPECT_THAT(positions.words({{0, {11, 0, 101, 0}}, {2, {503, 0, 94, 0}}}),
                ElementsAre(11, 0, 101, 0, 23, 0, 204, 0));
    EXPECT_THAT(positions.words({{0, {12, 0, 101, 0}}, {2, {504, 0, 95, 0}}}),
                ElementsAre(12, 0, 101, 0, 24, 0, 205, 0));
}

TEST(ProcessorPositions, WhenOneComesBackEachPositionGoesOnFromWhatItShowed) {
    ProcessorPositions positions;
    positions.words({{0, {10, 0, 100, 0}}, {1, {20, 0, 200, 0}}, {2, {500, 0, 90, 0}}});
    EXPECT_THAT(positions.words({{0, {10, 0, 100, 0}}, {2, {503, 0, 94, 0}}}),
                ElementsAre(10, 0, 100, 0, 23, 0, 204, 0));
    EXPECT_THAT(positions.words({{0, {10, 0, 100, 0}}, {1, {20, 0, 200, 0}}, {2, {505, 0, 95, 0}}}),
                ElementsAre(10, 0, 100, 0, 23, 0, 204, 0, 505, 0, 95, 0));
}

TEST(ProcessorPositions, AProcessorThatComesInBetweenAddsNothingYet) {
    ProcessorPositions positions;
    positions.words({{0, {10, 0, 100, 0}}, {2, {500, 0, 90, 0}}});
    EXPECT_THAT(
        positions.words({{0, {10, 0, 101, 0}}, {1, {7000, 0, 8000, 0}}, {2, {501, 0, 90, 0}}}),
        ElementsAre(10, 0, 101, 0, 500, 0, 90, 0, 501, 0, 90, 0));
    EXPECT_THAT(
        positions.words({{0, {10, 0, 101, 0}}, {1, {7002, 0, 8001, 0}}, {2, {501, 0, 90, 0}}}),
        ElementsAre(10, 0, 101, 0, 502, 0, 91, 0, 501, 0, 90, 0));
}

TEST(ProcessorPositions, ACounterThatWentBackwardsMeanwhileAddsNothing) {
    ProcessorPositions positions;
    positions.words({{0, {10, 0, 100, 0}}, {1, {20, 0, 200, 0}}});
    EXPECT_THAT(positions.words({{1, {25, 0, 190, 0}}}), ElementsAre(15, 0, 100, 0));
}

TEST(ProcessorPositions, OffsetsWrapAsTheCountersDo) {
    ProcessorPositions positions;
    positions.words({{0, {4294967295U, 0, 0, 0}}, {1, {7, 0, 0, 0}}});
    EXPECT_THAT(positions.words({{1, {9, 0, 0, 0}}}), ElementsAre(1, 0, 0, 0));
}

TEST(ProcessorPositions, NoProcessorsGiveNoWords) {
    ProcessorPositions positions;
    EXPECT_THAT(positions.words({}), IsEmpty());
    EXPECT_THAT(positions.words({{3, {1, 2, 3, 4}}}), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(positions.words({}), IsEmpty());
}

}  // namespace
}  // namespace tarnwick::platform
