// SPDX-License-Identifier: MIT
#include "platform/linux/events/background_work.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <latch>
#include <memory>
#include <sched.h>
#include <sys/resource.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include "platform/timed_source.h"
#include "platform/workers.h"

namespace tarnwick::platform {
namespace {

using std::chrono::milliseconds;

/// Runs `question` in the background and returns its answer.
template <class F>
auto askInBackground(BackgroundWork& work, F question) {
    auto answer = std::make_shared<std::promise<decltype(question())>>();
    auto result = answer->get_future();
    work.run([answer, question] { answer->set_value(question()); });
    return result.get();
}

/// Waits, however long it takes, until so many threads are left.
void waitForThreads(const BackgroundWork& work, std::size_t count) {
    while (work.threadCount() != count) {
        std::this_thread::yield();
    }
}

/// The same for no more than so many.
void waitForAtMost(const BackgroundWork& work, std::size_t count) {
    while (work.threadCount() > count) {
        std::this_thread::yield();
    }
}

/// Work that blocks until it is released. The gate's state outlives all work that waits for it.
class Gate {
 public:
    std::function<void()> stuckWork() {
        return [gate = state_] {
            gate->arrived.count_down();
            gate->open.wait();
            gate->left.count_down();
        };
    }
    void waitForArrivals() { state_->arrived.wait(); }
    void open() { state_->open.count_down(); }
    void waitForDepartures() { state_->left.wait(); }

    explicit Gate(std::ptrdiff_t count) : state_(std::make_shared<State>(count)) {}

 private:
    struct State {
        explicit State(std::ptrdiff_t count) : arrived(count), left(count) {}
        std::latch arrived;
        std::latch open{1};
        std::latch left;
    };
    std::shared_ptr<State> state_;
};

TEST(BackgroundWork, MakesNoThreadBeforeThereIsWork) {
    const BackgroundWork work;
    EXPECT_EQ(work.threadCount(), 0u);
}

TEST(BackgroundWork, RunsWorkOnAThreadOfItsOwn) {
    BackgroundWork work;
    EXPECT_NE(askInBackground(work, [] { return std::this_thread::get_id(); }),
              std::this_thread::get_id());
}

TEST(BackgroundWork, RunsAtLowPriorityUnderTheBatchPolicy) {
    const int own = sched_getscheduler(0);
    BackgroundWork work;
    const int niceness = askInBackground(
        work, [] { return getpriority(PRIO_PROCESS, static_cast<id_t>(gettid())); });
    EXPECT_GE(niceness, 10);
    EXPECT_EQ(askInBackground(work, [] { return sched_getscheduler(0); }), SCHED_BATCH);
    // The thread that adds the work keeps its own.
    EXPECT_EQ(sched_getscheduler(0), own);
}

TEST(BackgroundWork, RunsAtThePriorityOfWhoWaitsForItWhereThatIsWanted) {
    BackgroundWork work(BackgroundWork::Priority::inherited);
    const int niceness = askInBackground(
        work, [] { return getpriority(PRIO_PROCESS, static_cast<id_t>(gettid())); });
    EXPECT_EQ(niceness, getpriority(PRIO_PROCESS, static_cast<id_t>(gettid())));
    EXPECT_EQ(askInBackground(work, [] { return sched_getscheduler(0); }), sched_getscheduler(0));
}

TEST(BackgroundWork, TakesNoSignals) {
    BackgroundWork work;
    const auto blocked = askInBackground(work, [] {
        sigset_t set;
        pthread_sigmask(SIG_SETMASK, nullptr, &set);
        return sigismember(&set, SIGTERM) == 1 && sigismember(&set, SIGINT) == 1 &&
               sigismember(&set, SIGHUP) == 1;
    });
    EXPECT_TRUE(blocked);
    sigset_t own;
    pthread_sigmask(SIG_SETMASK, nullptr, &own);
    EXPECT_EQ(sigismember(&own, SIGTERM), 0);
}

TEST(BackgroundWork, NoMoreThreadsStayThanOneRefreshAfterAnotherNeeds) {
    BackgroundWork work;
    for (int i = 0; i < 50; ++i) {
        askInBackground(work, [] { return 0; });
        waitForAtMost(work, BackgroundWork::kIdleLimit);
    }
}

TEST(BackgroundWork, WithoutAThreadWorkIsRefusedAndTheNextOneTried) {
    bool refuses = true;
    BackgroundWork work(std::chrono::hours(1), [&refuses](std::function<void()> body) {
        if (refuses) {
            throw std::system_error(
                std::make_error_code(std::errc::resource_unavailable_try_again));
        }
        return std::thread(std::move(body));
    });
    const auto held = std::make_shared<int>();
    EXPECT_FALSE(work.run([held] {}));
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(work.threadCount(), 0U);
    refuses = false;
    EXPECT_EQ(askInBackground(work, [] { return 5; }), 5);
}

TEST(BackgroundWork, WorkIsAlsoRefusedBesideStuckWork) {
    bool refuses = false;
    BackgroundWork work(std::chrono::hours(1), [&refuses](std::function<void()> body) {
        if (refuses) {
            throw std::system_error(
                std::make_error_code(std::errc::resource_unavailable_try_again));
        }
        return std::thread(std::move(body));
    });
    Gate gate(1);
    EXPECT_TRUE(work.run(gate.stuckWork()));
    gate.waitForArrivals();
    refuses = true;
    EXPECT_FALSE(work.run([] { ADD_FAILURE() << "was dropped"; }));
    refuses = false;
    EXPECT_EQ(askInBackground(work, [] { return 5; }), 5);
    gate.open();
}

TEST(ThreadWorkers, WaitUntilTheWorkHasEnded) {
    BackgroundWork threads;
    ThreadWorkers workers([&threads](auto work) { return threads.run(std::move(work)); });
    std::thread::id worker;
    EXPECT_EQ(workers.run([&worker] { worker = std::this_thread::get_id(); }, 3600),
              Workers::Outcome::ended);
    EXPECT_NE(worker, std::thread::id());
    EXPECT_NE(worker, std::this_thread::get_id());
}

TEST(ThreadWorkers, LeaveWorkBehindThatHangs) {
    BackgroundWork threads;
    ThreadWorkers workers([&threads](auto work) { return threads.run(std::move(work)); });
    Gate gate(1);
    EXPECT_EQ(workers.run(gate.stuckWork(), 0.001), Workers::Outcome::late);
    EXPECT_EQ(workers.run([] {}, 3600), Workers::Outcome::ended);
    gate.open();
    gate.waitForDepartures();
}

TEST(ThreadWorkers, TellWhereNoThreadCanBeStarted) {
    ThreadWorkers workers([](const auto&) { return false; });
    EXPECT_EQ(workers.run([] {}, 3600), Workers::Outcome::refused);
}

TEST(ThreadWorkers, OneThreadForEachSourceThatHangsAfterManyReadings) {
    constexpr int kSources = 8;
    BackgroundWork threads;
    ThreadWorkers workers([&threads](auto work) { return threads.run(std::move(work)); });
    Gate gate(kSources);
    std::vector<std::unique_ptr<TimedSource<int>>> sources;
    for (int i = 0; i < kSources; ++i) {
        sources.push_back(std::make_unique<TimedSource<int>>(workers, 0.001));
    }
    for (int reading = 0; reading < 100; ++reading) {
        for (const auto& source : sources) {
            EXPECT_FALSE(source->read([stuck = gate.stuckWork()] {
                stuck();
                return 1;
            }));
        }
        // Other work goes on.
        EXPECT_EQ(askInBackground(threads, [reading] { return reading; }), reading);
    }
    waitForAtMost(threads, kSources + BackgroundWork::kIdleLimit);
    gate.open();
    gate.waitForDepartures();
}

TEST(BackgroundWork, StuckWorkDoesNotHoldUpOtherWork) {
    BackgroundWork work;
    Gate gate(1);
    work.run(gate.stuckWork());
    gate.waitForArrivals();
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(askInBackground(work, [i] { return i; }), i);
    }
    gate.open();
}

TEST(BackgroundWork, FurtherThreadsEndWhenTheyHaveNothingToDo) {
    BackgroundWork work;
    Gate gate(3);
    for (int i = 0; i < 3; ++i) {
        work.run(gate.stuckWork());
    }
    gate.waitForArrivals();
    EXPECT_EQ(work.threadCount(), 3u);
    gate.open();
    waitForThreads(work, BackgroundWork::kIdleLimit);
}

TEST(BackgroundWork, NoMoreThanTheLimitOfThreadsAreMade) {
    BackgroundWork work;
    Gate gate(BackgroundWork::kThreadLimit);
    for (std::size_t i = 0; i < BackgroundWork::kThreadLimit; ++i) {
        work.run(gate.stuckWork());
    }
    gate.waitForArrivals();
    std::atomic<bool> ran = false;
    std::promise<void> done;
    work.run([&] {
        ran = true;
        done.set_value();
    });
    EXPECT_EQ(work.threadCount(), BackgroundWork::kThreadLimit);
    EXPECT_FALSE(ran);
    // The first that gets through takes it.
    gate.open();
    done.get_future().wait();
    EXPECT_TRUE(ran);
}

TEST(BackgroundWork, EveryPieceRunsOnceWhoeverAddsIt) {
    constexpr int kThreads = 4;
    constexpr int kPieces = 2000;
    BackgroundWork work;
    std::vector<std::atomic<int>> runs(kThreads * kPieces);
    std::latch done(kThreads * kPieces);
    {
        std::vector<std::jthread> adding;
        for (int thread = 0; thread < kThreads; ++thread) {
            adding.emplace_back([&, thread] {
                for (int i = 0; i < kPieces; ++i) {
                    work.run([&, index = static_cast<std::size_t>(thread * kPieces + i)] {
                        ++runs[index];
                        done.count_down();
                    });
                }
            });
        }
    }
    done.wait();
    for (const auto& count : runs) {
        EXPECT_EQ(count, 1);
    }
    EXPECT_LE(work.threadCount(), BackgroundWork::kThreadLimit);
}

TEST(BackgroundWork, WorkMayAddWork) {
    BackgroundWork work;
    std::promise<void> done;
    work.run([&] { work.run([&] { work.run([&] { done.set_value(); }); }); });
    done.get_future().wait();
}

TEST(BackgroundWork, WhatWorkHoldsIsLetGoInTheBackground) {
    struct Holder {
        std::promise<std::thread::id>& destroyedOn;
        explicit Holder(std::promise<std::thread::id>& promise) : destroyedOn(promise) {}
        Holder(const Holder&) = delete;
        Holder& operator=(const Holder&) = delete;
        ~Holder() { destroyedOn.set_value(std::this_thread::get_id()); }
    };
    BackgroundWork work;
    std::promise<std::thread::id> destroyedOn;
    auto holder = std::make_shared<Holder>(destroyedOn);
    work.run([holder = std::move(holder)] {});
    // Without any further work.
    EXPECT_NE(destroyedOn.get_future().get(), std::this_thread::get_id());
}

TEST(BackgroundWork, TheEndWaitsForWorkThatIsRunning) {
    std::atomic<bool> finished = false;
    {
        BackgroundWork work(std::chrono::hours(1));
        std::promise<void> started;
        work.run([&] {
            started.set_value();
            for (int i = 0; i < 1000; ++i) {
                std::this_thread::yield();
            }
            finished = true;
        });
        started.get_future().wait();
    }
    EXPECT_TRUE(finished);
}

TEST(BackgroundWork, TheEndDoesNotWaitForStuckWorkForEver) {
    Gate gate(1);
    {
        BackgroundWork work(milliseconds(1));
        work.run(gate.stuckWork());
        gate.waitForArrivals();
    }
    // Here at all: the work is still stuck. It may get through later without harm.
    gate.open();
    gate.waitForDepartures();
}

TEST(BackgroundWork, TheEndDropsWorkThatHasNotBegun) {
    Gate gate(BackgroundWork::kThreadLimit);
    const auto ran = std::make_shared<std::atomic<bool>>(false);
    {
        BackgroundWork work(milliseconds(1));
        for (std::size_t i = 0; i < BackgroundWork::kThreadLimit; ++i) {
            work.run(gate.stuckWork());
        }
        gate.waitForArrivals();
        work.run([ran] { *ran = true; });
        EXPECT_EQ(ran.use_count(), 2);
    }
    EXPECT_EQ(ran.use_count(), 1);
    gate.open();
    gate.waitForDepartures();
    EXPECT_FALSE(*ran);
}

}  // namespace
}  // namespace tarnwick::platform
