// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/qt_dispatch.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEventLoop>
#include <cmath>
#include <ctime>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <latch>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace tarnwick::platform {
namespace {

class QtDispatchTest : public ::testing::Test {
 protected:
    /// Turns the event loop until `done`.
    static void turnUntil(const std::function<bool()>& done) {
        while (!done()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }

    /// Turns the event loop once, without waiting.
    static void turn() { QCoreApplication::processEvents(); }

 private:
    int argc_ = 1;
    char name_[6] = "tests";
    char* argv_[2] = {name_, nullptr};
    QCoreApplication application_{argc_, argv_};

 protected:
    QtDispatch dispatch;
};

TEST_F(QtDispatchTest, TheClockIsTheMonotonicOne) {
    const auto monotonic = [] {
        timespec time{};
        clock_gettime(CLOCK_MONOTONIC, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
    };
    const double before = monotonic();
    const double now = dispatch.now();
    const double after = monotonic();
    EXPECT_LE(before, now);
    EXPECT_LE(now, after);
}

TEST_F(QtDispatchTest, MainWorkRunsOnALaterTurnInOrder) {
    std::string order;
    dispatch.async([&] { order += 'a'; });
    dispatch.async([&] { order += 'b'; });
    dispatch.async([&] { order += 'c'; });
    EXPECT_EQ(order, "");
    turn();
    EXPECT_EQ(order, "abc");
}

TEST_F(QtDispatchTest, MainWorkMayAddMainWork) {
    std::string order;
    dispatch.async([&] {
        order += 'a';
        dispatch.async([&] { order += 'c'; });
        order += 'b';
    });
    turnUntil([&] { return order.size() == 3; });
    EXPECT_EQ(order, "abc");
}

TEST_F(QtDispatchTest, WorkFromOtherThreadsRunsOnTheMainThreadInTheirOrder) {
    constexpr std::size_t kThreads = 4;
    constexpr std::size_t kPieces = 500;
    std::vector<std::vector<std::size_t>> seen(kThreads);
    std::size_t elsewhere = 0;
    const auto main = std::this_thread::get_id();
    std::vector<std::jthread> threads;
    for (std::size_t thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, index = thread] {
            for (std::size_t i = 0; i < kPieces; ++i) {
                dispatch.async([&, index, i] {
                    seen[index].push_back(i);
                    elsewhere += std::this_thread::get_id() == main ? 0u : 1u;
                });
            }
        });
    }
    turnUntil([&] {
        std::size_t total = 0;
        for (const auto& list : seen) {
            total += list.size();
        }
        return total == kThreads * kPieces;
    });
    EXPECT_EQ(elsewhere, 0u);
    for (const auto& list : seen) {
        for (std::size_t i = 0; i < list.size(); ++i) {
            ASSERT_EQ(list[i], i);
        }
    }
}

TEST_F(QtDispatchTest, ManyPiecesCostOneWakeUp) {
    turn();
    int wakeUps = 0;
    int ran = 0;
    std::jthread([&] {
        for (int i = 0; i < 1000; ++i) {
            dispatch.async([&] { ++ran; });
        }
    }).join();
    const auto connection =
        QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake,
                         [&wakeUps] { ++wakeUps; });
    turnUntil([&] { return ran > 0; });
    QObject::disconnect(connection);
    EXPECT_EQ(ran, 1000);
    EXPECT_LE(wakeUps, 1);
}

TEST_F(QtDispatchTest, WorkThatTurnsTheEventLoopDoesNotHoldUpWhatIsQueuedBehindIt) {
    std::string order;
    QEventLoop inner;
    dispatch.async([&] {
        order += 'a';
        inner.exec();
        order += 'c';
    });
    dispatch.async([&] {
        order += 'b';
        inner.quit();
    });
    turnUntil([&] { return order.size() == 3; });
    EXPECT_EQ(order, "abc");
}

TEST_F(QtDispatchTest, WhatWorkHoldsIsLetGoOnceItRan) {
    const auto held = std::make_shared<int>();
    dispatch.async([held] {});
    EXPECT_EQ(held.use_count(), 2);
    turn();
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(QtDispatchTest, TimersNeverFireEarly) {
    std::vector<std::unique_ptr<Timer>> timers;
    std::size_t fired = 0;
    int early = 0;
    for (int i = 1; i <= 40; ++i) {
        const double due = dispatch.now() + i * 0.0007;
        dispatch.asyncAfter(i * 0.0007, [&, due] {
            ++fired;
            early += dispatch.now() < due ? 1 : 0;
        });
    }
    for (int i = 1; i <= 5; ++i) {
        const auto next = std::make_shared<double>(dispatch.now() + i * 0.0013);
        timers.push_back(dispatch.scheduleRepeating(i * 0.0013, [&, next, i] {
            ++fired;
            early += dispatch.now() < *next ? 1 : 0;
            *next = timers[static_cast<std::size_t>(i - 1)]->fireTime();
        }));
        *next = timers.back()->fireTime();
    }
    turnUntil([&] { return fired >= 80; });
    EXPECT_EQ(early, 0);
}

TEST_F(QtDispatchTest, ARepeatingTimerKeepsToItsGrid) {
    const auto timer = dispatch.scheduleRepeating(0.004, [] {});
    const double first = timer->fireTime();
    int fired = 0;
    const auto counter = dispatch.scheduleRepeating(0.004, [&] { ++fired; });
    turnUntil([&] { return fired >= 5; });
    const double periods = (timer->fireTime() - first) / 0.004;
    EXPECT_NEAR(periods, std::round(periods), 1e-6);
    EXPECT_GE(periods, 4.9);
}

TEST_F(QtDispatchTest, ATimerWaitsWithinItsToleranceForOneThatCannot) {
    const double start = dispatch.now();
    double patientFired = 0;
    const auto patient =
        dispatch.scheduleRepeating(0.005, [&] { patientFired = dispatch.now() - start; });
    patient->setTolerance(3600);
    bool done = false;
    dispatch.asyncAfter(0.03, [&] { done = true; });
    turnUntil([&] { return done; });
    EXPECT_GE(patientFired, 0.03);
}

TEST_F(QtDispatchTest, AMovedTimerFiresAtItsNewTime) {
    int fired = 0;
    const auto timer = dispatch.scheduleRepeating(3600, [&] { ++fired; });
    timer->setFireTime(dispatch.now());
    turnUntil([&] { return fired == 1; });
    EXPECT_GT(timer->fireTime(), dispatch.now() + 3000);
}

TEST_F(QtDispatchTest, AnInvalidatedTimerDoesNotFire) {
    int fired = 0;
    const auto timer = dispatch.scheduleRepeating(0.001, [&] { ++fired; });
    timer->invalidate();
    bool done = false;
    dispatch.asyncAfter(0.005, [&] { done = true; });
    turnUntil([&] { return done; });
    EXPECT_EQ(fired, 0);
}

TEST_F(QtDispatchTest, ATimerCenturiesAwayNeitherFiresNorHoldsUpOthers) {
    int fired = 0;
    const auto timer = dispatch.scheduleRepeating(1e10, [&] { ++fired; });
    turn();
    bool done = false;
    dispatch.asyncAfter(0.001, [&] { done = true; });
    turnUntil([&] { return done; });
    turn();
    EXPECT_EQ(fired, 0);
}

TEST_F(QtDispatchTest, LaterWorkRunsInTheOrderOfItsTimes) {
    std::string order;
    dispatch.asyncAfter(0.004, [&] { order += 'b'; });
    dispatch.asyncAfter(0, [&] { order += 'a'; });
    dispatch.asyncAfter(-5, [&] { order += 'a'; });
    EXPECT_EQ(order, "");
    turnUntil([&] { return order.size() == 3; });
    EXPECT_EQ(order, "aab");
}

TEST_F(QtDispatchTest, TimersGoOnInsideAHandlerThatTurnsTheEventLoop) {
    std::string order;
    QEventLoop inner;
    dispatch.asyncAfter(0, [&] {
        order += 'a';
        inner.exec();
        order += 'c';
    });
    dispatch.asyncAfter(0.002, [&] {
        order += 'b';
        inner.quit();
    });
    turnUntil([&] { return order.size() == 3; });
    EXPECT_EQ(order, "abc");
}

TEST_F(QtDispatchTest, DetachedWorkRunsElsewhereAndHopsBack) {
    const auto main = std::this_thread::get_id();
    std::thread::id background = main;
    std::thread::id after;
    dispatch.detached([&] {
        background = std::this_thread::get_id();
        dispatch.async([&] { after = std::this_thread::get_id(); });
    });
    turnUntil([&] { return after != std::thread::id(); });
    EXPECT_NE(background, main);
    EXPECT_EQ(after, main);
}

TEST_F(QtDispatchTest, StuckDetachedWorkDoesNotHoldUpOtherWork) {
    // The stuck work may leave its wait after this test has ended.
    const auto open = std::make_shared<std::latch>(1);
    dispatch.detached([open] { open->wait(); });
    bool done = false;
    dispatch.detached([&] { dispatch.async([&] { done = true; }); });
    turnUntil([&] { return done; });
    open->count_down();
}

TEST_F(QtDispatchTest, WhatWaitsAtTheEndIsDropped) {
    const auto held = std::make_shared<int>();
    auto other = std::make_unique<QtDispatch>();
    const auto timer = other->scheduleRepeating(0.001, [held] {});
    other->async([held] {});
    other->asyncAfter(0.001, [held] {});
    other.reset();
    turn();
    // Only the handle of the timer, which may outlive its dispatch, still holds its handler.
    EXPECT_EQ(held.use_count(), 2);
}

}  // namespace
}  // namespace tarnwick::platform
