// SPDX-License-Identifier: MIT
#include "ui/panel/motion.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <vector>

#include "platform/testing/manual_dispatch.h"

namespace tarnwick {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MotionTest : public ::testing::Test {
 protected:
    MovingValue& value() { return *value_; }
    /// Turns the clock to the next frame.
    void nextFrame() { manual.advance(Motion::kFrame); }

    platform::testing::ManualDispatch manual;
    std::shared_ptr<Motion> motion = std::make_shared<Motion>(manual);
    /// What each frame showed.
    std::vector<double> frames;
    std::optional<MovingValue> value_{std::in_place, motion,
                                      [this] { frames.push_back(value_->value()); }};
};

TEST_F(MotionTest, ArrivesWithinAFifthOfASecondInAFewEvenlyFallingSteps) {
    value().moveTo(1);
    EXPECT_EQ(value().value(), 0);
    EXPECT_EQ(value().target(), 1);
    manual.advance(0.2);
    EXPECT_EQ(value().value(), 1);
    ASSERT_EQ(frames.size(), 6U);
    EXPECT_EQ(frames.back(), 1);
    double last = 0;
    double lastStep = 1;
    for (const double frame : frames) {
        EXPECT_GT(frame, last);
        EXPECT_LT(frame - last, lastStep);
        lastStep = frame - last;
        last = frame;
    }
}

TEST_F(MotionTest, AValueMayTakeLonger) {
    MovingValue slow(
        motion, [] {}, 1);
    slow.moveTo(1);
    manual.advance(0.9);
    EXPECT_LT(slow.value(), 1);
    manual.advance(0.2);
    EXPECT_EQ(slow.value(), 1);
}

TEST_F(MotionTest, IsThereAsSoonAsTheRestIsTooSmallToSee) {
    for (const double target : {12.0, 0.0}) {
        frames.clear();
        value().moveTo(target, 1);
        manual.advance(0.2);
        // Without that the rest is 8.2, 5.2, 2.8, 1.2 and 0.2 before it is 0.
        ASSERT_EQ(frames.size(), 5U);
        EXPECT_NEAR(std::abs(frames[3] - target), 1.2, 0.05);
        EXPECT_EQ(frames.back(), target);
        EXPECT_FALSE(motion->isRunning());
    }
}

TEST_F(MotionTest, MovesDownAsItMovesUp) {
    value().jumpTo(1);
    value().moveTo(0.5);
    nextFrame();
    EXPECT_LT(value().value(), 1);
    EXPECT_GT(value().value(), 0.5);
    manual.advance(0.2);
    EXPECT_EQ(value().value(), 0.5);
}

TEST_F(MotionTest, TheClockStandsStillWhileNothingMoves) {
    EXPECT_FALSE(motion->isRunning());
    manual.advance(10);
    EXPECT_EQ(manual.wakeUps(), 0U);
    value().moveTo(1);
    EXPECT_TRUE(motion->isRunning());
    manual.advance(10);
    EXPECT_FALSE(motion->isRunning());
    EXPECT_EQ(manual.wakeUps(), 6U);
    manual.advance(10);
    EXPECT_EQ(manual.wakeUps(), 6U);
}

TEST_F(MotionTest, ManyMoveByOneClock) {
    MovingValue other(motion, [] {});
    value().moveTo(1);
    other.moveTo(1);
    manual.advance(10);
    EXPECT_EQ(other.value(), 1);
    EXPECT_EQ(manual.wakeUps(), 6U);
}

TEST_F(MotionTest, ALateFrameIsTheLast) {
    value().moveTo(1);
    manual.sleep(5);
    manual.advance(0);
    EXPECT_THAT(frames, ElementsAre(1));
    EXPECT_FALSE(motion->isRunning());
}

TEST_F(MotionTest, ANewTargetIsTakenFromWhereItIs) {
    value().moveTo(1);
    nextFrame();
    nextFrame();
    const double place = value().value();
    value().moveTo(0);
    EXPECT_EQ(value().value(), place);
    nextFrame();
    EXPECT_LT(value().value(), place);
    EXPECT_GT(value().value(), 0);
    manual.advance(0.2);
    EXPECT_EQ(value().value(), 0);
    EXPECT_FALSE(motion->isRunning());
}

TEST_F(MotionTest, TheSameTargetAgainChangesNothing) {
    value().moveTo(1);
    nextFrame();
    nextFrame();
    value().moveTo(1);
    manual.advance(4 * Motion::kFrame);
    EXPECT_EQ(value().value(), 1);
    value().moveTo(1);
    EXPECT_FALSE(motion->isRunning());
}

TEST_F(MotionTest, AJumpIsThereAtOnceAndEndsTheMove) {
    value().moveTo(1);
    value().jumpTo(0.25);
    EXPECT_EQ(value().value(), 0.25);
    EXPECT_EQ(value().target(), 0.25);
    EXPECT_FALSE(motion->isRunning());
    manual.advance(1);
    EXPECT_THAT(frames, IsEmpty());
}

TEST_F(MotionTest, NothingMovesWhereLessMotionIsAskedFor) {
    motion->setReduced(true);
    value().moveTo(1);
    EXPECT_EQ(value().value(), 1);
    EXPECT_THAT(frames, ElementsAre(1));
    EXPECT_FALSE(motion->isRunning());
    motion->setReduced(false);
    value().moveTo(0);
    EXPECT_TRUE(motion->isRunning());
}

TEST_F(MotionTest, WhatIsOnItsWayArrivesWhenLessMotionIsAskedFor) {
    value().moveTo(1);
    nextFrame();
    frames.clear();
    motion->setReduced(true);
    EXPECT_THAT(frames, ElementsAre(1));
    EXPECT_FALSE(motion->isRunning());
}

TEST_F(MotionTest, WithoutAMotionEveryStepIsAJump) {
    int changes = 0;
    MovingValue alone(nullptr, [&changes] { ++changes; });
    alone.moveTo(1);
    EXPECT_EQ(alone.value(), 1);
    EXPECT_EQ(changes, 1);
}

TEST_F(MotionTest, AValueMayGoOnItsWay) {
    value().moveTo(1);
    nextFrame();
    value_.reset();
    EXPECT_FALSE(motion->isRunning());
    manual.advance(1);
}

TEST_F(MotionTest, AValueMayGoInAFrameOfAnother) {
    std::optional<MovingValue> second(std::in_place, motion, [] {});
    MovingValue first(motion, [&second] { second.reset(); });
    first.moveTo(1);
    second->moveTo(1);
    manual.advance(1);
    EXPECT_EQ(first.value(), 1);
    EXPECT_FALSE(motion->isRunning());
}

}  // namespace
}  // namespace tarnwick
