// SPDX-License-Identifier: MIT
#include "platform/testing/manual_dispatch.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tarnwick::platform::testing {
namespace {

using Background = ManualDispatch::Background;

TEST(ManualDispatch, RunsTheMainQueueInOrderAndNotBeforeItIsAsked) {
    ManualDispatch dispatch;
    std::string order;
    dispatch.async([&] {
        order += 'a';
        dispatch.async([&] { order += 'c'; });
    });
    dispatch.async([&] { order += 'b'; });
    EXPECT_EQ(order, "");
    EXPECT_EQ(dispatch.mainPending(), 2u);
    dispatch.runMain();
    EXPECT_EQ(order, "abc");
    EXPECT_EQ(dispatch.asyncCount(), 3u);
}

TEST(ManualDispatch, OneTurnLeavesWhatIsAddedMeanwhile) {
    ManualDispatch dispatch;
    std::string order;
    dispatch.async([&] {
        order += 'a';
        dispatch.async([&] { order += 'b'; });
    });
    dispatch.runMainTurn();
    EXPECT_EQ(order, "a");
    EXPECT_EQ(dispatch.mainPending(), 1u);
}

TEST(ManualDispatch, HoldsDetachedWorkUntilItIsRunByHand) {
    ManualDispatch dispatch(Background::byHand);
    std::string order;
    dispatch.detached([&] { order += 'a'; });
    dispatch.detached([&] { order += 'b'; });
    dispatch.runMain();
    dispatch.advance(100);
    EXPECT_EQ(order, "");
    EXPECT_EQ(dispatch.detachedPending(), 2u);
    EXPECT_TRUE(dispatch.runNextDetached());
    EXPECT_EQ(order, "a");
    dispatch.runDetached();
    EXPECT_EQ(order, "ab");
    EXPECT_FALSE(dispatch.runNextDetached());
    EXPECT_EQ(dispatch.detachedCount(), 2u);
}

TEST(ManualDispatch, AnAutomaticBackgroundRunsWithTheMainQueue) {
    ManualDispatch dispatch;
    std::string order;
    dispatch.detached([&] {
        order += dispatch.isInBackground() ? 'b' : 'm';
        dispatch.async([&] { order += dispatch.isInBackground() ? 'b' : 'm'; });
    });
    EXPECT_EQ(order, "");
    dispatch.runMain();
    EXPECT_EQ(order, "bm");
}

TEST(ManualDispatch, WorkThatHangsInTheBackgroundMayLetOthersRunMeanwhile) {
    ManualDispatch dispatch(Background::byHand);
    std::string order;
    const auto note = [&] { order += dispatch.isInBackground() ? 'b' : 'm'; };
    dispatch.detached([&] {
        dispatch.async(note);
        dispatch.detached(note);
        dispatch.runMainTurn();
        dispatch.runNextDetached();
        note();
    });
    dispatch.runNextDetached();
    note();
    EXPECT_EQ(order, "mbbm");
}

TEST(ManualDispatch, AdvanceStopsAtEveryWakeUp) {
    ManualDispatch dispatch(Background::automatic, 1000);
    std::vector<double> times;
    const auto timer = dispatch.scheduleRepeating(10, [&] { times.push_back(dispatch.now()); });
    timer->setTolerance(1.5);
    dispatch.advance(11);
    EXPECT_TRUE(times.empty());
    EXPECT_EQ(dispatch.now(), 1011);
    dispatch.advance(20.5);
    EXPECT_EQ(times, (std::vector<double>{1011.5, 1021.5, 1031.5}));
    EXPECT_EQ(dispatch.wakeUps(), 3u);
    EXPECT_EQ(dispatch.now(), 1031.5);
}

TEST(ManualDispatch, WorkForLaterRunsThen) {
    ManualDispatch dispatch;
    std::vector<double> times;
    dispatch.asyncAfter(2, [&] { times.push_back(dispatch.now()); });
    dispatch.asyncAfter(1, [&] { times.push_back(dispatch.now()); });
    dispatch.advance(0.5);
    EXPECT_TRUE(times.empty());
    dispatch.advance(10);
    EXPECT_EQ(times, (std::vector<double>{1, 2}));
}

TEST(ManualDispatch, SleepIsMadeUpForByOneFiring) {
    ManualDispatch dispatch;
    int count = 0;
    const auto timer = dispatch.scheduleRepeating(10, [&] { ++count; });
    dispatch.sleep(95);
    EXPECT_EQ(count, 0);
    dispatch.advance(0);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(timer->fireTime(), 100);
}

}  // namespace
}  // namespace tarnwick::platform::testing
