// SPDX-License-Identifier: MIT
#include "platform/timer_queue.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarnwick::platform {
namespace {

TEST(TimerQueue, NeedsNoWakeWithoutTimers) {
    TimerQueue queue;
    EXPECT_FALSE(queue.nextWake());
    queue.runDue(100);
}

TEST(TimerQueue, FiresNoneBeforeAnIntervalOneAtAnIntervalElevenAtEleven) {
    TimerQueue queue;
    int count = 0;
    const auto timer = queue.scheduleRepeating(100, 10, [&] { ++count; });
    EXPECT_EQ(timer->fireTime(), 110);
    queue.runDue(105);
    queue.runDue(109.999);
    EXPECT_EQ(count, 0);
    queue.runDue(110);
    EXPECT_EQ(count, 1);
    for (int i = 2; i <= 11; ++i) {
        queue.runDue(100 + 10 * i);
    }
    EXPECT_EQ(count, 11);
}

TEST(TimerQueue, AsksToBeWokenAtTheEarliestSumOfFireTimeAndTolerance) {
    TimerQueue queue;
    const auto fast = queue.scheduleRepeating(0, 10, [] {});
    EXPECT_EQ(queue.nextWake(), 10);
    fast->setTolerance(3);
    EXPECT_EQ(queue.nextWake(), 13);
    const auto other = queue.scheduleRepeating(0, 12, [] {});
    EXPECT_EQ(queue.nextWake(), 12);
    other->setTolerance(0.5);
    EXPECT_EQ(queue.nextWake(), 12.5);
    EXPECT_EQ(fast->tolerance(), 3);
}

TEST(TimerQueue, TimersWithinTheirTolerancesShareOneWakeUp) {
    TimerQueue queue;
    std::vector<std::string> fired;
    const auto slow = queue.scheduleRepeating(0, 11, [&] { fired.push_back("slow"); });
    slow->setTolerance(5);
    const auto fast = queue.scheduleRepeating(0, 10, [&] { fired.push_back("fast"); });
    fast->setTolerance(1.5);
    ASSERT_EQ(queue.nextWake(), 11.5);
    queue.runDue(11.5);
    EXPECT_EQ(fired, (std::vector<std::string>{"fast", "slow"}));
}

TEST(TimerQueue, OneThatIsNotYetDueDoesNotFireWithOthers) {
    TimerQueue queue;
    int count = 0;
    const auto due = queue.scheduleRepeating(0, 1, [] {});
    const auto later = queue.scheduleRepeating(0, 1.01, [&] { ++count; });
    queue.runDue(1);
    EXPECT_EQ(count, 0);
}

TEST(TimerQueue, ALateFiringKeepsTheGridOfTheFirstFireTime) {
    TimerQueue queue;
    const auto timer = queue.scheduleRepeating(0, 10, [] {});
    queue.runDue(11.4);
    EXPECT_EQ(timer->fireTime(), 20);
    queue.runDue(21.5);
    EXPECT_EQ(timer->fireTime(), 30);
}

TEST(TimerQueue, TheGridDoesNotDriftOverAMillionPeriods) {
    TimerQueue queue;
    const auto timer = queue.scheduleRepeating(0, 0.1, [] {});
    for (int i = 1; i <= 1000000; ++i) {
        queue.runDue(timer->fireTime());
    }
    EXPECT_DOUBLE_EQ(timer->fireTime(), 0.1 + 1000000 * 0.1);
}

TEST(TimerQueue, MissedPeriodsAreMadeUpForByOneFiring) {
    TimerQueue queue;
    int count = 0;
    const auto timer = queue.scheduleRepeating(0, 10, [&] { ++count; });
    queue.runDue(75);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(timer->fireTime(), 80);
    queue.runDue(75);
    EXPECT_EQ(count, 1);
    // At a fire time itself, that one is made up for as well.
    queue.runDue(100);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(timer->fireTime(), 110);
}

TEST(TimerQueue, AMovedTimerFiresThereAndThenOneIntervalApart) {
    TimerQueue queue;
    int count = 0;
    const auto timer = queue.scheduleRepeating(0, 30, [&] { ++count; });
    timer->setFireTime(5);
    EXPECT_EQ(queue.nextWake(), 5);
    queue.runDue(4.9);
    EXPECT_EQ(count, 0);
    queue.runDue(6);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(timer->fireTime(), 35);
    timer->setFireTime(50);
    queue.runDue(49);
    EXPECT_EQ(count, 1);
}

TEST(TimerQueue, AnInvalidatedTimerNeverFires) {
    TimerQueue queue;
    int count = 0;
    const auto timer = queue.scheduleRepeating(0, 1, [&] { ++count; });
    timer->invalidate();
    timer->invalidate();
    timer->setFireTime(0.5);
    queue.runDue(10);
    EXPECT_EQ(count, 0);
    EXPECT_FALSE(queue.nextWake());
}

TEST(TimerQueue, DestroyingATimerInvalidatesIt) {
    TimerQueue queue;
    int count = 0;
    queue.scheduleRepeating(0, 1, [&] { ++count; }).reset();
    queue.runDue(10);
    EXPECT_EQ(count, 0);
}

TEST(TimerQueue, AnInvalidatedTimerDoesNotFireEvenWhenItWasDueTogetherWithTheOneThatDidIt) {
    TimerQueue queue;
    int count = 0;
    std::unique_ptr<Timer> second;
    const auto first = queue.scheduleRepeating(0, 1, [&] { second.reset(); });
    second = queue.scheduleRepeating(0, 1, [&] { ++count; });
    queue.runDue(1);
    EXPECT_EQ(count, 0);
}

TEST(TimerQueue, ATimerMayDestroyItselfWhileItFires) {
    TimerQueue queue;
    std::unique_ptr<Timer> timer;
    int count = 0;
    const auto text = std::make_shared<std::string>("still here");
    timer = queue.scheduleRepeating(0, 1, [&timer, &count, text] {
        timer.reset();
        // What the handler captured outlives the timer.
        EXPECT_EQ(*text, "still here");
        ++count;
    });
    queue.runDue(1);
    queue.runDue(2);
    EXPECT_EQ(count, 1);
}

TEST(TimerQueue, ATimerMayMoveItselfWhileItFires) {
    TimerQueue queue;
    std::unique_ptr<Timer> timer;
    int count = 0;
    timer = queue.scheduleRepeating(0, 10, [&] {
        ++count;
        timer->setFireTime(13);
    });
    queue.runDue(10);
    EXPECT_EQ(timer->fireTime(), 13);
    queue.runDue(13);
    EXPECT_EQ(count, 2);
}

TEST(TimerQueue, ATimerMovedAwayByAnEarlierHandlerDoesNotFire) {
    TimerQueue queue;
    int count = 0;
    std::unique_ptr<Timer> second;
    const auto first = queue.scheduleRepeating(0, 1, [&] { second->setFireTime(5); });
    second = queue.scheduleRepeating(0, 1, [&] { ++count; });
    queue.runDue(1);
    EXPECT_EQ(count, 0);
    queue.runDue(5);
    EXPECT_EQ(count, 1);
}

TEST(TimerQueue, ATimerAddedByAHandlerWaitsForTheNextCall) {
    TimerQueue queue;
    int count = 0;
    queue.scheduleOnce(1, [&] { queue.scheduleOnce(0.5, [&] { ++count; }); });
    queue.runDue(1);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(queue.nextWake(), 0.5);
    queue.runDue(1);
    EXPECT_EQ(count, 1);
}

TEST(TimerQueue, ASingleFiringHappensOnce) {
    TimerQueue queue;
    int count = 0;
    queue.scheduleOnce(3, [&] { ++count; });
    EXPECT_EQ(queue.nextWake(), 3);
    queue.runDue(2.9);
    EXPECT_EQ(count, 0);
    queue.runDue(3);
    queue.runDue(4);
    EXPECT_EQ(count, 1);
    EXPECT_FALSE(queue.nextWake());
}

TEST(TimerQueue, DueTimersFireInTheOrderOfTheirFireTimesThenOfTheirMaking) {
    TimerQueue queue;
    std::string order;
    queue.scheduleOnce(3, [&] { order += 'c'; });
    queue.scheduleOnce(1, [&] { order += 'a'; });
    queue.scheduleOnce(3, [&] { order += 'd'; });
    queue.scheduleOnce(2, [&] { order += 'b'; });
    queue.runDue(5);
    EXPECT_EQ(order, "abcd");
}

TEST(TimerQueue, AHandlerThatRunsTheQueueAgainFiresNothingTwice) {
    TimerQueue queue;
    std::string order;
    const auto first = queue.scheduleRepeating(0, 1, [&] {
        order += 'a';
        queue.runDue(1);
    });
    const auto second = queue.scheduleRepeating(0, 1, [&] { order += 'b'; });
    queue.scheduleOnce(1, [&] { order += 'c'; });
    queue.runDue(1);
    EXPECT_EQ(order, "abc");
}

TEST(TimerQueue, TellsWhenTheNextWakeMayHaveChanged) {
    std::vector<std::optional<double>> wakes;
    TimerQueue* seen = nullptr;
    TimerQueue queue([&] { wakes.push_back(seen->nextWake()); });
    seen = &queue;
    const auto timer = queue.scheduleRepeating(0, 10, [] {});
    EXPECT_EQ(wakes.back(), 10);
    timer->setTolerance(2);
    EXPECT_EQ(wakes.back(), 12);
    timer->setFireTime(4);
    EXPECT_EQ(wakes.back(), 6);
    queue.runDue(6);
    EXPECT_EQ(wakes.back(), 16);
    queue.scheduleOnce(7, [] {});
    EXPECT_EQ(wakes.back(), 7);
    queue.runDue(7);
    EXPECT_EQ(wakes.back(), 16);
    timer->invalidate();
    EXPECT_EQ(wakes.back(), std::nullopt);
}

TEST(TimerQueue, IsReadyForTheNextWakeBeforeAHandlerRuns) {
    // A handler may turn the event loop by itself and wait there for another timer.
    std::optional<double> wake;
    TimerQueue* seen = nullptr;
    TimerQueue queue([&] { wake = seen->nextWake(); });
    seen = &queue;
    std::optional<double> inHandler;
    const auto timer = queue.scheduleRepeating(0, 10, [&] { inHandler = wake; });
    queue.runDue(10);
    EXPECT_EQ(inHandler, 20);
}

TEST(TimerQueue, ATimerMayOutliveItsQueue) {
    std::unique_ptr<Timer> timer;
    {
        TimerQueue queue;
        timer = queue.scheduleRepeating(0, 1, [] {});
    }
    timer->setTolerance(1);
    timer->setFireTime(7);
    EXPECT_EQ(timer->fireTime(), 7);
    timer->invalidate();
}

TEST(TimerQueue, ANegativeToleranceIsNone) {
    TimerQueue queue;
    const auto timer = queue.scheduleRepeating(0, 10, [] {});
    timer->setTolerance(-3);
    EXPECT_EQ(timer->tolerance(), 0);
    EXPECT_EQ(queue.nextWake(), 10);
}

TEST(TimerQueue, AnIntervalOfNothingDoesNotSpin) {
    TimerQueue queue;
    int count = 0;
    const auto timer = queue.scheduleRepeating(0, 0, [&] { ++count; });
    queue.runDue(1);
    EXPECT_EQ(count, 1);
    EXPECT_GT(timer->fireTime(), 1);
}

}  // namespace
}  // namespace tarnwick::platform
