#include "platform/linux/graphics/idle_residency.h"

#include <gtest/gtest.h>
#include <limits>

namespace tarnwick::platform {
namespace {

constexpr std::uint64_t largest32 = std::numeric_limits<std::uint32_t>::max();

TEST(IdleResidency, IsTheShareOfTheTimeThatWasNotSlept) {
    IdleResidency residency;
    EXPECT_EQ(residency.busyPercentage(5000, 100), std::nullopt);
    EXPECT_EQ(residency.busyPercentage(6500, 102), 25);
    EXPECT_EQ(residency.busyPercentage(6500, 104), 100);
    EXPECT_EQ(residency.busyPercentage(8500, 106), 0);
    EXPECT_EQ(residency.busyPercentage(13500, 116), 50);
}

TEST(IdleResidency, ACounterThatNeverCountedSaysNothing) {
    IdleResidency residency;
    EXPECT_EQ(residency.busyPercentage(0, 100), std::nullopt);
    EXPECT_EQ(residency.busyPercentage(0, 102), std::nullopt);
    EXPECT_EQ(residency.busyPercentage(1500, 104), 25);
}

TEST(IdleResidency, ASmallLeadOfTheCounterIsIdle) {
    IdleResidency residency;
    residency.busyPercentage(5000, 100);
    EXPECT_EQ(residency.busyPercentage(7015, 102), 0);
}

TEST(IdleResidency, ALeadOfMoreThanTwoHundredthsAndAMomentIsAJump) {
    IdleResidency residency;
    residency.busyPercentage(5000, 100);
    EXPECT_EQ(residency.busyPercentage(7059, 102), 0);
    EXPECT_EQ(residency.busyPercentage(9120, 104), std::nullopt);
}

TEST(IdleResidency, ACounterThatJumpsBeginsAnew) {
    IdleResidency residency;
    residency.busyPercentage(5000, 100);
    EXPECT_EQ(residency.busyPercentage(8000, 102), std::nullopt);
    EXPECT_EQ(residency.busyPercentage(9000, 104), 50);
}

TEST(IdleResidency, ACounterThatWentBackBeginsAnew) {
    IdleResidency residency;
    residency.busyPercentage(5000, 100);
    EXPECT_EQ(residency.busyPercentage(100, 102), std::nullopt);
    EXPECT_EQ(residency.busyPercentage(1100, 104), 50);
}

TEST(IdleResidency, ACounterOf32BitsMayWrap) {
    IdleResidency residency;
    residency.busyPercentage(largest32 - 499, 100);
    EXPECT_EQ(residency.busyPercentage(500, 102), 50);
}

TEST(IdleResidency, ACounterMayGoBeyond32Bits) {
    IdleResidency residency;
    residency.busyPercentage(largest32 - 499, 100);
    EXPECT_EQ(residency.busyPercentage(largest32 + 501, 102), 50);
}

TEST(IdleResidency, SamplesThatFollowTooCloselyRepeatTheAnswer) {
    IdleResidency residency;
    residency.busyPercentage(5000, 100);
    EXPECT_EQ(residency.busyPercentage(5000, 100.1), std::nullopt);
    EXPECT_EQ(residency.busyPercentage(6000, 102), 50);
    EXPECT_EQ(residency.busyPercentage(6000, 102), 50);
    EXPECT_EQ(residency.busyPercentage(6000, 102.1), 50);
    EXPECT_EQ(residency.busyPercentage(6000, 101), 50);
    EXPECT_EQ(residency.busyPercentage(7000, 104), 50);
}

TEST(IdleResidency, AFifthOfASecondIsEnough) {
    IdleResidency residency;
    residency.busyPercentage(5000, 100);
    EXPECT_EQ(residency.busyPercentage(5095, 100.19), std::nullopt);
    EXPECT_NEAR(residency.busyPercentage(5105, 100.21).value_or(-1), 50, 0.001);
}

TEST(IdleResidency, AfterForgettingTheNextSampleIsTheFirst) {
    IdleResidency residency;
    residency.busyPercentage(5000, 100);
    residency.busyPercentage(6000, 102);
    residency.forget();
    EXPECT_EQ(residency.busyPercentage(6000, 102.1), std::nullopt);
    EXPECT_EQ(residency.busyPercentage(7000, 104.1), 50);
}

}  // namespace
}  // namespace tarnwick::platform
