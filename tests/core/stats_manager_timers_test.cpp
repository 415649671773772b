// SPDX-License-Identifier: MIT
// Pace, tolerance and what a change of visibility does to the timers.
#include "tests/core/stats_manager_fixture.h"

namespace tarnwick::testing {
namespace {

using StatsManagerTimers = StatsManagerTest;

TEST_F(StatsManagerTimers, AppearingReplacesBothTimersThenRefreshesFast) {
    const auto manager = makeSettled();
    manager->popoverDidAppear();
    EXPECT_TRUE(manager->isPopoverVisible());
    EXPECT_EQ(takeEvents(),
              (Calls{"invalidate 10", "invalidate 120", "schedule 2", "tolerance 2 is 0.3",
                     "schedule 30", "fire 30 at 1030", "tolerance 30 is 4.5", "detached"}));
}

TEST_F(StatsManagerTimers, DisappearingReplacesBothTimersAndRefreshesNothing) {
    const auto manager = makeSettled();
    manager->popoverDidAppear();
    settle();
    takeEvents();
    manager->popoverDidDisappear();
    EXPECT_FALSE(manager->isPopoverVisible());
    EXPECT_EQ(manual.detachedPending(), 0u);
    EXPECT_EQ(count("detached"), 0u);
    const auto events = takeEvents();
    EXPECT_EQ(events[0], "invalidate 2");
    EXPECT_EQ(events[1], "invalidate 30");
    EXPECT_EQ(events[2], "schedule 10");
    EXPECT_EQ(events[3], "tolerance 10 is 1.5");
    EXPECT_EQ(events[4], "schedule 120");
    EXPECT_EQ(events[5], "fire 120 at 1030");
    EXPECT_EQ(events[6], "tolerance 120 is 18");
}

TEST_F(StatsManagerTimers, AppearingTwiceReschedulesAndRefreshesOnce) {
    const auto manager = makeSettled();
    manager->popoverDidAppear();
    takeEvents();
    manager->popoverDidAppear();
    EXPECT_TRUE(takeEvents().empty());
    settle();
    EXPECT_EQ(count("cpu"), 1u);
}

TEST_F(StatsManagerTimers, DisappearingWithoutHavingAppearedDoesNothing) {
    const auto manager = makeSettled();
    manager->popoverDidDisappear();
    EXPECT_TRUE(takeEvents().empty());
    manager->popoverDidAppear();
    manager->popoverDidDisappear();
    settle();
    takeEvents();
    manager->popoverDidDisappear();
    EXPECT_TRUE(takeEvents().empty());
}

TEST_F(StatsManagerTimers, TheSlowToleranceIsAtLeastASecond) {
    const auto manager = make(3, 5);
    const auto events = takeEvents();
    EXPECT_EQ(events.back(), "tolerance 5 is 1");
    manager->popoverDidAppear();
    EXPECT_EQ(takeEvents()[6], "tolerance 3 is 1");
}

TEST_F(StatsManagerTimers, ShowingKeepsASlowRefreshThatWasDueInFiveSeconds) {
    const auto manager = makeSettled();
    manual.advance(115);
    settle();
    takeEvents();
    takeCalls();
    manager->popoverDidAppear();
    EXPECT_EQ(takeEvents()[5], "fire 30 at 1120");
    settle();
    // Not before it was due; then no later than its tolerance.
    manual.advance(4.9);
    settle();
    EXPECT_EQ(count("battery"), 0u);
    manual.advance(0.1 + 4.5);
    settle();
    EXPECT_EQ(count("battery"), 1u);
}

TEST_F(StatsManagerTimers, HidingKeepsASlowRefreshThatWasDueInTenSeconds) {
    const auto manager = makeSettled();
    manager->popoverDidAppear();
    manual.advance(20);
    takeEvents();
    manager->popoverDidDisappear();
    EXPECT_EQ(takeEvents()[5], "fire 120 at 1030");
    settle();
    takeCalls();
    manual.advance(9.9);
    settle();
    EXPECT_EQ(count("battery"), 0u);
    manual.advance(0.1 + 18);
    settle();
    EXPECT_EQ(count("battery"), 1u);
}

TEST_F(StatsManagerTimers, ShowingBringsADistantSlowRefreshForward) {
    const auto manager = makeSettled();
    manual.advance(20);
    takeEvents();
    manager->popoverDidAppear();
    EXPECT_EQ(takeEvents()[5], "fire 30 at 1050");
}

TEST_F(StatsManagerTimers, AfterACarriedOverFireTimeTheNewIntervalApplies) {
    const auto manager = makeSettled();
    manual.advance(115);
    settle();
    takeEvents();
    manager->popoverDidAppear();
    settle();
    manual.advance(10);
    takeEvents();
    manager->popoverDidDisappear();
    // It fired for 1120; the next is thirty seconds on from there.
    EXPECT_EQ(takeEvents()[5], "fire 120 at 1150");
}

TEST_F(StatsManagerTimers, TogglingThePanelNeverPutsOffTheSlowRefresh) {
    const auto manager = makeSettled();
    for (int i = 0; i < 60; ++i) {
        manager->popoverDidAppear();
        manual.advance(5);
        settle();
        manager->popoverDidDisappear();
        manual.advance(5);
        settle();
    }
    EXPECT_GE(count("battery"), 5u);
}

TEST_F(StatsManagerTimers, ASlowRefreshThatIsOverdueFiresAtOnceAfterAChangeOfPace) {
    const auto manager = makeSettled();
    manual.sleep(500);
    takeEvents();
    manager->popoverDidAppear();
    EXPECT_EQ(takeEvents()[5], "fire 30 at 1120");
    manual.advance(0);
    settle();
    EXPECT_EQ(count("battery"), 1u);
}

TEST_F(StatsManagerTimers, AChangeOfVisibilityRestartsTheFastPeriod) {
    const auto manager = makeSettled();
    manual.advance(9);
    manager->popoverDidAppear();
    settle();
    takeCalls();
    manager->popoverDidDisappear();
    // Due at 1010 before; now ten seconds from the change.
    manual.advance(9.9);
    settle();
    EXPECT_EQ(count("cpu"), 0u);
    manual.advance(1.6);
    settle();
    EXPECT_EQ(count("cpu"), 1u);
}

TEST_F(StatsManagerTimers, TheFastTimerFiresWithinItsTolerance) {
    const auto manager = makeSettled();
    manual.advance(10);
    settle();
    EXPECT_EQ(count("cpu"), 0u);
    manual.advance(1.5);
    settle();
    EXPECT_EQ(count("cpu"), 1u);
}

TEST_F(StatsManagerTimers, TheSlowTimerAsksForInexactBatteryReadings) {
    const auto manager = makeSettled();
    manual.advance(138);
    settle();
    EXPECT_EQ(count("battery"), 1u);
    EXPECT_EQ(count("battery forced"), 0u);
}

TEST_F(StatsManagerTimers, ATickDuringAFlightIsQueued) {
    const auto manager = makeSettled();
    manager->refreshFast();
    manual.advance(100);
    EXPECT_EQ(manual.detachedPending(), 1u);
    settle();
    EXPECT_EQ(count("cpu"), 2u);
}

TEST_F(StatsManagerTimers, ALongSleepIsMadeUpForByOneRefreshOfEachKind) {
    const auto manager = makeSettled();
    manual.sleep(8 * 3600);
    manual.advance(0);
    settle();
    EXPECT_EQ(count("cpu"), 1u);
    EXPECT_EQ(count("battery"), 1u);
}

TEST_F(StatsManagerTimers, ADayHiddenHasItsExactNumberOfRefreshes) {
    manual.setBackground(Background::automatic);
    const auto manager = make();
    manual.advance(86400);
    // One at the start, then one each ten seconds; the tick of the last second is still allowed
    // to wait for its tolerance.
    EXPECT_EQ(count("cpu"), 8640u);
    EXPECT_EQ(count("network"), 8640u);
    EXPECT_EQ(count("battery"), 720u);
    EXPECT_EQ(count("storage"), 720u);
    EXPECT_EQ(count("health"), 720u);
    EXPECT_EQ(count("battery forced"), 0u);
    EXPECT_EQ(count("processes 3"), 0u);
    EXPECT_EQ(count("prune"), 0u);
    // Every slow tick shared a wake-up with a fast one.
    EXPECT_EQ(manual.wakeUps(), 8639u);
}

TEST_F(StatsManagerTimers, AnHourVisibleHasItsExactNumberOfRefreshes) {
    manual.setBackground(Background::automatic);
    const auto manager = make();
    manual.runMain();
    manager->popoverDidAppear();
    manual.advance(3600);
    // One at the start, one when the panel appeared, then one each two seconds.
    EXPECT_EQ(count("cpu"), 1801u);
    EXPECT_EQ(count("processes 3"), 1800u);
    EXPECT_EQ(count("prune"), 120u);
    EXPECT_EQ(count("battery"), 120u);
    EXPECT_EQ(count("storage"), 120u);
    EXPECT_EQ(count("health"), 120u);
    EXPECT_EQ(manual.wakeUps(), 1799u);
}

}  // namespace
}  // namespace tarnwick::testing
