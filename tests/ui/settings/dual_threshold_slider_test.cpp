// SPDX-License-Identifier: MIT
#include "ui/settings/dual_threshold_slider.h"

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace tarnwick {
namespace {

using Thumb = DualThresholdSlider::Thumb;
using Adjustment = DualThresholdSlider::Adjustment;
using MoveCommand = DualThresholdSlider::MoveCommand;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A slider over two values of the test's own; 220 wide, so that a percent is two points.
class DualThresholdSliderTest : public ::testing::Test {
 protected:
    static constexpr double kWidth = 220;

    Binding<double> bind(double& value, const char* name) {
        return {[&value] { return value; },
                [this, &value, name](double next) {
                    value = next;
                    writes.push_back(name);
                }};
    }
    DualThresholdSlider make(ClosedRange normalRange = {10, 99}, ClosedRange highRange = {11, 100},
                             bool keyboard = true) {
        return {"CPU Usage", bind(normal, "normal"), bind(high, "high"), normalRange, highRange,
                keyboard};
    }
    /// Where to point at for a percentage.
    static double at(double percent) { return 10 + percent * 2; }

    double normal = 70;
    double high = 90;
    std::vector<std::string> writes;
    DualThresholdSlider slider = make();
};

TEST_F(DualThresholdSliderTest, HasFixedMeasures) {
    EXPECT_EQ(DualThresholdSlider::kTrackRange, (ClosedRange{0, 100}));
    EXPECT_EQ(DualThresholdSlider::kThumbSize, 20);
    EXPECT_EQ(DualThresholdSlider::kTrackHeight, 6);
    EXPECT_EQ(DualThresholdSlider::kTrackOpacity, 0.14);
    EXPECT_EQ(DualThresholdSlider::kLightThumbLevel, 1);
    EXPECT_EQ(DualThresholdSlider::kDarkThumbLevel, 0.12);
    EXPECT_GE(DualThresholdSlider::kHitSize, 24);
}

TEST_F(DualThresholdSliderTest, TheTrackIsAThumbShorterThanTheSlider) {
    EXPECT_EQ(DualThresholdSlider::usableWidth(220), 200);
    EXPECT_EQ(DualThresholdSlider::usableWidth(20.5), 1);
    EXPECT_EQ(DualThresholdSlider::usableWidth(22), 2);
}

TEST_F(DualThresholdSliderTest, ASliderNarrowerThanItsThumbHasATrackOfOnePoint) {
    for (const double width : {20.0, 5.0, 0.0, -3.0}) {
        EXPECT_EQ(DualThresholdSlider::usableWidth(width), 1);
        EXPECT_EQ(DualThresholdSlider::position(50, width), 0.5);
    }
    slider.drag(Thumb::normal, 10.62, 5);
    EXPECT_EQ(normal, 62);
}

TEST_F(DualThresholdSliderTest, PositionsFollowTheValues) {
    EXPECT_EQ(DualThresholdSlider::position(0, kWidth), 0);
    EXPECT_EQ(DualThresholdSlider::position(50, kWidth), 100);
    EXPECT_EQ(DualThresholdSlider::position(100, kWidth), 200);
}

TEST_F(DualThresholdSliderTest, ThumbsAreCentredHalfAThumbFurther) {
    EXPECT_EQ(slider.thumbCenter(Thumb::normal, kWidth), 150);
    EXPECT_EQ(slider.thumbCenter(Thumb::high, kWidth), 190);
}

TEST_F(DualThresholdSliderTest, ThumbsWhoseValuesNobodyCouldHaveSetCanBeTaken) {
    for (const double value : {-500.0, std::nan(""), -std::numeric_limits<double>::infinity()}) {
        normal = value;
        high = 90;
        EXPECT_EQ(slider.thumbCenter(Thumb::normal, kWidth), at(0));
        EXPECT_TRUE(slider.beginDrag(at(1), 0, kWidth));
        EXPECT_TRUE(slider.isDraggingNormal());
        slider.continueDrag(at(40), kWidth);
        EXPECT_EQ(normal, 40);
    }
    for (const double value : {1e9, std::numeric_limits<double>::infinity()}) {
        normal = 40;
        high = value;
        EXPECT_EQ(slider.thumbCenter(Thumb::high, kWidth), at(100));
        EXPECT_TRUE(slider.beginDrag(at(99), 0, kWidth));
        EXPECT_TRUE(slider.isDraggingHigh());
        slider.continueDrag(at(60), kWidth);
        EXPECT_EQ(high, 60);
    }
    // Both at one place.
    normal = std::nan("");
    high = std::nan("");
    EXPECT_TRUE(slider.beginDrag(at(0), 0, kWidth));
    slider.endDrag();
}

TEST_F(DualThresholdSliderTest, TheThreeSegmentsFillTheTrack) {
    const auto segments = slider.segments(kWidth);
    EXPECT_EQ(segments.green, 140);
    EXPECT_EQ(segments.yellow, 40);
    EXPECT_EQ(segments.red, 20);
}

TEST_F(DualThresholdSliderTest, NoSegmentIsNegative) {
    normal = -5;
    high = -10;
    EXPECT_EQ(slider.segments(kWidth).green, 0);
    EXPECT_EQ(slider.segments(kWidth).yellow, 0);
    high = 120;
    EXPECT_EQ(slider.segments(kWidth).red, 0);
    normal = std::nan("");
    EXPECT_EQ(slider.segments(kWidth).green, 0);
}

TEST_F(DualThresholdSliderTest, DragsToWhereThePointerIs) {
    slider.drag(Thumb::normal, at(40), kWidth);
    EXPECT_EQ(normal, 40);
    slider.drag(Thumb::high, at(60), kWidth);
    EXPECT_EQ(high, 60);
}

TEST_F(DualThresholdSliderTest, RoundsHalvesAwayFromZero) {
    slider.drag(Thumb::normal, at(62.4), kWidth);
    EXPECT_EQ(normal, 62);
    slider.drag(Thumb::normal, at(62.5), kWidth);
    EXPECT_EQ(normal, 63);
    slider.drag(Thumb::high, at(92.5), kWidth);
    EXPECT_EQ(high, 93);
    slider.drag(Thumb::high, at(92.4), kWidth);
    EXPECT_EQ(high, 92);
}

TEST_F(DualThresholdSliderTest, NormalStopsOneBelowHigh) {
    slider.drag(Thumb::normal, at(89.4), kWidth);
    EXPECT_EQ(normal, 89);
    slider.drag(Thumb::normal, at(95), kWidth);
    EXPECT_EQ(normal, 89);
    EXPECT_EQ(high, 90);
}

TEST_F(DualThresholdSliderTest, HighStopsOneAboveNormal) {
    slider.drag(Thumb::high, at(20), kWidth);
    EXPECT_EQ(high, 71);
    EXPECT_EQ(normal, 70);
}

TEST_F(DualThresholdSliderTest, BeyondTheTrackStandsForItsEnds) {
    slider.drag(Thumb::normal, -500, kWidth);
    EXPECT_EQ(normal, 10);
    slider.drag(Thumb::high, 5000, kWidth);
    EXPECT_EQ(high, 100);
    slider.drag(Thumb::normal, 5000, kWidth);
    EXPECT_EQ(normal, 99);
    slider.drag(Thumb::normal, at(0), kWidth);
    slider.drag(Thumb::high, -500, kWidth);
    EXPECT_EQ(high, 11);
    EXPECT_EQ(normal, 10);
}

TEST_F(DualThresholdSliderTest, RangesEndTheWay) {
    DualThresholdSlider storage = make({50, 99}, {51, 100});
    storage.drag(Thumb::normal, at(20), kWidth);
    EXPECT_EQ(normal, 50);
    storage.drag(Thumb::high, at(20), kWidth);
    EXPECT_EQ(high, 51);
    high = 100;
    storage.drag(Thumb::normal, at(100), kWidth);
    EXPECT_EQ(normal, 99);
}

TEST_F(DualThresholdSliderTest, TheTrackEndsTheWayWhereTheRangesDoNot) {
    DualThresholdSlider wide = make({-50, 150}, {-50, 150});
    high = 200;
    wide.drag(Thumb::normal, -500, kWidth);
    EXPECT_EQ(normal, 0);
    wide.drag(Thumb::high, 5000, kWidth);
    EXPECT_EQ(high, 100);
}

TEST_F(DualThresholdSliderTest, NormalGivesWayToItsOwnLowerBound) {
    DualThresholdSlider storage = make({50, 99}, {51, 100});
    high = 30;
    storage.drag(Thumb::normal, at(20), kWidth);
    EXPECT_EQ(normal, 50);
    storage.drag(Thumb::normal, at(80), kWidth);
    EXPECT_EQ(normal, 50);
    EXPECT_EQ(high, 30);
}

TEST_F(DualThresholdSliderTest, HighGivesWayToItsOwnUpperBound) {
    DualThresholdSlider narrow = make({10, 99}, {11, 60});
    normal = 80;
    narrow.drag(Thumb::high, at(95), kWidth);
    EXPECT_EQ(high, 60);
    narrow.drag(Thumb::high, at(20), kWidth);
    EXPECT_EQ(high, 60);
    EXPECT_EQ(normal, 80);
}

TEST_F(DualThresholdSliderTest, HighKeepsItsLowerBoundBesideALowNormal) {
    normal = 2;
    slider.drag(Thumb::high, at(0), kWidth);
    EXPECT_EQ(high, 11);
}

TEST_F(DualThresholdSliderTest, WritesOnlyTheThumbThatIsDraggedAndAtEveryChange) {
    slider.drag(Thumb::normal, at(40), kWidth);
    slider.drag(Thumb::normal, at(40), kWidth);
    slider.drag(Thumb::high, at(95), kWidth);
    EXPECT_THAT(writes, ElementsAre("normal", "normal", "high"));
}

TEST_F(DualThresholdSliderTest, WritesWholeNumbersWhateverIsStored) {
    normal = 70.6;
    slider.adjust(Thumb::normal, Adjustment::increment);
    EXPECT_EQ(normal, 72);
    high = 90.5;
    slider.adjust(Thumb::high, Adjustment::decrement);
    EXPECT_EQ(high, 90);
    normal = std::nan("");
    slider.adjust(Thumb::normal, Adjustment::increment);
    EXPECT_EQ(normal, 10);
    high = std::nan("");
    slider.adjust(Thumb::high, Adjustment::increment);
    EXPECT_EQ(high, 100);
    normal = std::nan("");
    slider.adjust(Thumb::high, Adjustment::decrement);
    EXPECT_EQ(high, 99);
}

TEST_F(DualThresholdSliderTest, DragsAreFlaggedWhileTheyLast) {
    EXPECT_FALSE(slider.isDraggingNormal());
    EXPECT_FALSE(slider.isDraggingHigh());
    ASSERT_TRUE(slider.beginDrag(at(70), 0, kWidth));
    EXPECT_TRUE(slider.isDraggingNormal());
    EXPECT_FALSE(slider.isDraggingHigh());
    slider.endDrag();
    EXPECT_FALSE(slider.isDraggingNormal());
    ASSERT_TRUE(slider.beginDrag(at(90), 0, kWidth));
    EXPECT_FALSE(slider.isDraggingNormal());
    EXPECT_TRUE(slider.isDraggingHigh());
    slider.endDrag();
    EXPECT_FALSE(slider.isDraggingHigh());
}

TEST_F(DualThresholdSliderTest, APressIsTheFirstChangeOfADrag) {
    ASSERT_TRUE(slider.beginDrag(at(72), 0, kWidth));
    EXPECT_EQ(normal, 72);
    slider.continueDrag(at(20), kWidth);
    EXPECT_EQ(normal, 20);
    slider.continueDrag(at(95), kWidth);
    EXPECT_EQ(normal, 89);
    EXPECT_EQ(high, 90);
}

TEST_F(DualThresholdSliderTest, APressOnTheTrackMovesTheNearerThumbThereAndDragsIt) {
    ASSERT_TRUE(slider.beginDrag(at(30), 0, kWidth));
    EXPECT_EQ(normal, 30);
    EXPECT_EQ(high, 90);
    slider.continueDrag(at(40), kWidth);
    EXPECT_EQ(normal, 40);
    slider.endDrag();
    ASSERT_TRUE(slider.beginDrag(at(66), 0, kWidth));
    EXPECT_EQ(normal, 40);
    EXPECT_EQ(high, 66);
    slider.endDrag();
    // In the middle the normal one.
    ASSERT_TRUE(slider.beginDrag(at(53), 0, kWidth));
    EXPECT_EQ(normal, 53);
}

TEST_F(DualThresholdSliderTest, HasTicksAtTheEndsOfItsRanges) {
    EXPECT_EQ(slider.ticks(kWidth), (std::array<double, 2>{at(10), at(100)}));
}

TEST_F(DualThresholdSliderTest, APressAwayFromThumbsAndTrackDoesNothing) {
    constexpr double half = DualThresholdSlider::kHitSize / 2;
    EXPECT_FALSE(slider.beginDrag(-0.5, 0, kWidth));
    EXPECT_FALSE(slider.beginDrag(kWidth + 0.5, 0, kWidth));
    EXPECT_FALSE(slider.beginDrag(at(70), half + 0.5, kWidth));
    EXPECT_FALSE(slider.beginDrag(at(70), -half - 0.5, kWidth));
    EXPECT_FALSE(slider.isDraggingNormal());
    slider.continueDrag(at(30), kWidth);
    EXPECT_THAT(writes, IsEmpty());
    EXPECT_TRUE(slider.beginDrag(at(70) - half, half, kWidth));
}

TEST_F(DualThresholdSliderTest, NothingIsDraggedAfterTheEnd) {
    slider.beginDrag(at(70), 0, kWidth);
    slider.endDrag();
    writes.clear();
    slider.continueDrag(at(30), kWidth);
    EXPECT_THAT(writes, IsEmpty());
}

TEST_F(DualThresholdSliderTest, OfTwoThumbsThatCanMoveTheNearerIsTaken) {
    normal = 70;
    high = 74;
    slider.beginDrag(at(71), 0, kWidth);
    EXPECT_TRUE(slider.isDraggingNormal());
    slider.endDrag();
    normal = 70;
    slider.beginDrag(at(73), 0, kWidth);
    EXPECT_TRUE(slider.isDraggingHigh());
    EXPECT_EQ(high, 73);
}

TEST_F(DualThresholdSliderTest, APressOnAThumbMovesNoOther) {
    for (const double gap : {1, 2, 3, 4, 5, 6}) {
        normal = 80;
        high = 80 + gap;
        for (const double pressed : {normal, high}) {
            ASSERT_TRUE(slider.beginDrag(at(pressed), 0, kWidth));
            EXPECT_EQ(normal, 80) << gap;
            EXPECT_EQ(high, 80 + gap) << gap;
            slider.endDrag();
        }
    }
}

TEST_F(DualThresholdSliderTest, AThumbThatWasPressedIsTakenInEitherDirection) {
    for (const double to : {60, 81, 95}) {
        normal = 80;
        high = 82;
        ASSERT_TRUE(slider.beginDrag(at(82), 0, kWidth));
        slider.continueDrag(at(to), kWidth);
        EXPECT_EQ(normal, 80) << to;
        EXPECT_EQ(high, std::max(81.0, to));
        slider.endDrag();
        high = 82;
        ASSERT_TRUE(slider.beginDrag(at(80), 0, kWidth));
        slider.continueDrag(at(to), kWidth);
        EXPECT_EQ(normal, std::min(81.0, to));
        EXPECT_EQ(high, 82) << to;
        slider.endDrag();
    }
}

TEST_F(DualThresholdSliderTest, ADragWhoseEndWasLostIsOverWithTheNextPress) {
    ASSERT_TRUE(slider.beginDrag(at(70), 0, kWidth));
    EXPECT_FALSE(slider.beginDrag(at(30), kWidth, kWidth));
    slider.continueDrag(at(40), kWidth);
    EXPECT_EQ(normal, 70);
    EXPECT_FALSE(slider.isDraggingNormal());
}

TEST_F(DualThresholdSliderTest, OfTwoThumbsTheOneThatCanMoveIsTaken) {
    normal = 70;
    high = 71;
    slider.beginDrag(at(68), 0, kWidth);
    EXPECT_TRUE(slider.isDraggingNormal());
    slider.endDrag();
    normal = 70;
    slider.beginDrag(at(74), 0, kWidth);
    EXPECT_TRUE(slider.isDraggingHigh());
    EXPECT_EQ(high, 74);
}

TEST_F(DualThresholdSliderTest, TheDirectionDecidesWhereNeitherCanMoveYet) {
    normal = 70;
    high = 71;
    ASSERT_TRUE(slider.beginDrag(at(70.4), 0, kWidth));
    EXPECT_FALSE(slider.isDraggingNormal());
    EXPECT_FALSE(slider.isDraggingHigh());
    EXPECT_THAT(writes, IsEmpty());
    slider.continueDrag(at(76), kWidth);
    EXPECT_TRUE(slider.isDraggingHigh());
    EXPECT_EQ(high, 76);
    slider.continueDrag(at(20), kWidth);
    EXPECT_EQ(high, 71);
    EXPECT_EQ(normal, 70);
    slider.endDrag();
    ASSERT_TRUE(slider.beginDrag(at(70.4), 0, kWidth));
    slider.continueDrag(at(60), kWidth);
    EXPECT_EQ(normal, 60);
    EXPECT_EQ(high, 71);
}

TEST_F(DualThresholdSliderTest, AtTheEndsTheThumbWithRoomIsTaken) {
    normal = 99;
    high = 100;
    slider.beginDrag(at(100), 0, kWidth);
    slider.continueDrag(at(95), kWidth);
    EXPECT_EQ(normal, 95);
    EXPECT_EQ(high, 100);
    slider.endDrag();
    normal = 10;
    high = 11;
    slider.beginDrag(at(10), 0, kWidth);
    slider.continueDrag(at(15), kWidth);
    EXPECT_EQ(normal, 10);
    EXPECT_EQ(high, 15);
}

TEST_F(DualThresholdSliderTest, AdjustsByOne) {
    slider.adjust(Thumb::normal, Adjustment::increment);
    EXPECT_EQ(normal, 71);
    slider.adjust(Thumb::normal, Adjustment::decrement);
    EXPECT_EQ(normal, 70);
    slider.adjust(Thumb::high, Adjustment::increment);
    EXPECT_EQ(high, 91);
    slider.adjust(Thumb::high, Adjustment::decrement);
    EXPECT_EQ(high, 90);
}

TEST_F(DualThresholdSliderTest, HighStaysAtItsUpperBound) {
    high = 100;
    slider.adjust(Thumb::high, Adjustment::increment);
    EXPECT_EQ(high, 100);
}

TEST_F(DualThresholdSliderTest, NormalStaysAtItsLowerBound) {
    normal = 10;
    slider.adjust(Thumb::normal, Adjustment::decrement);
    EXPECT_EQ(normal, 10);
}

TEST_F(DualThresholdSliderTest, NeighboursStopEachOther) {
    normal = 70;
    high = 71;
    slider.adjust(Thumb::high, Adjustment::decrement);
    EXPECT_EQ(high, 71);
    slider.adjust(Thumb::normal, Adjustment::increment);
    EXPECT_EQ(normal, 70);
}

TEST_F(DualThresholdSliderTest, SetsAnyValueWithinTheSameBounds) {
    slider.setValue(Thumb::normal, 42.5);
    EXPECT_EQ(normal, 43);
    slider.setValue(Thumb::normal, 200);
    EXPECT_EQ(normal, 89);
    slider.setValue(Thumb::high, 0);
    EXPECT_EQ(high, 90);
    slider.setValue(Thumb::high, 1e9);
    EXPECT_EQ(high, 100);
}

TEST_F(DualThresholdSliderTest, MoveCommandsAdjust) {
    slider.move(Thumb::normal, MoveCommand::up);
    EXPECT_EQ(normal, 71);
    slider.move(Thumb::normal, MoveCommand::right);
    EXPECT_EQ(normal, 72);
    slider.move(Thumb::normal, MoveCommand::down);
    EXPECT_EQ(normal, 71);
    slider.move(Thumb::high, MoveCommand::left);
    EXPECT_EQ(high, 89);
}

TEST_F(DualThresholdSliderTest, WithoutKeyboardNavigationMoveCommandsDoNothing) {
    DualThresholdSlider quiet = make({10, 99}, {11, 100}, false);
    EXPECT_FALSE(quiet.keyboardNavigationEnabled());
    EXPECT_TRUE(slider.keyboardNavigationEnabled());
    quiet.move(Thumb::normal, MoveCommand::up);
    quiet.move(Thumb::high, MoveCommand::left);
    EXPECT_THAT(writes, IsEmpty());
    // Assistive technology is no keyboard.
    quiet.adjust(Thumb::normal, Adjustment::increment);
    EXPECT_EQ(normal, 71);
}

TEST_F(DualThresholdSliderTest, EachThumbHasALabelAndAValue) {
    EXPECT_EQ(slider.accessibilityLabel(Thumb::normal), "CPU Usage normal threshold");
    EXPECT_EQ(slider.accessibilityLabel(Thumb::high), "CPU Usage high threshold");
    EXPECT_EQ(slider.accessibilityValue(Thumb::normal), "70 percent");
    high = 90.9;
    EXPECT_EQ(slider.accessibilityValue(Thumb::high), "90 percent");
    EXPECT_EQ(slider.title(), "CPU Usage");
}

TEST_F(DualThresholdSliderTest, KeepsNoValuesOfItsOwn) {
    normal = 33;
    EXPECT_EQ(slider.value(Thumb::normal), 33);
    EXPECT_EQ(slider.thumbCenter(Thumb::normal, kWidth), at(33));
    EXPECT_EQ(slider.range(Thumb::normal), (ClosedRange{10, 99}));
    EXPECT_EQ(slider.range(Thumb::high), (ClosedRange{11, 100}));
}

}  // namespace
}  // namespace tarnwick
