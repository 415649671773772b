// SPDX-License-Identifier: MIT
// Single flights, queued follow-ups and the order in which samplers are called.
#include <utility>

#include "tests/core/stats_manager_fixture.h"

namespace tarnwick::testing {
namespace {

using StatsManagerFlights = StatsManagerTest;

TEST_F(StatsManagerFlights, ConstructionLogsThenRequestsFastThenSlowThenSchedulesTheTimers) {
    const auto manager = make();
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0].first, platform::LogLevel::info);
    EXPECT_EQ(log.lines()[0].second, "StatsManager initialized, starting polling");
    EXPECT_EQ(takeEvents(), (Calls{"detached", "detached", "schedule 10", "tolerance 10 is 1.5",
                                   "schedule 120", "tolerance 120 is 18"}));
    EXPECT_TRUE(calls.empty());
    manual.runNextDetached();
    EXPECT_EQ(takeCalls(), (Calls{"cpu", "gpu", "memory", "network"}));
    manual.runNextDetached();
    EXPECT_EQ(takeCalls(), (Calls{"battery"}));
}

TEST_F(StatsManagerFlights, AFastRefreshWhileHiddenReadsNoProcesses) {
    const auto manager = makeSettled();
    manager->refreshFast();
    settle();
    EXPECT_EQ(takeCalls(), (Calls{"cpu", "gpu", "memory", "network"}));
}

TEST_F(StatsManagerFlights, AFastRefreshWhileVisibleReadsThreeProcessesAListLast) {
    const auto manager = makeSettled();
    manager->popoverDidAppear();
    settle();
    EXPECT_EQ(takeCalls(), (Calls{"cpu", "gpu", "memory", "network", "thermal", "processes 3"}));
}

TEST_F(StatsManagerFlights, TenFastRequestsDuringAFlightYieldOneFollowUp) {
    const auto manager = makeSettled();
    manager->refreshFast();
    for (int i = 0; i < 10; ++i) {
        manager->refreshFast();
    }
    EXPECT_EQ(manual.detachedPending(), 1u);
    settle();
    EXPECT_EQ(count("cpu"), 2u);
}

TEST_F(StatsManagerFlights, AFastFlightLastsUntilItsResultIsApplied) {
    const auto manager = makeSettled();
    manager->refreshFast();
    manual.runNextDetached();
    // Measured, but the main queue has not come to it.
    manager->refreshFast();
    EXPECT_EQ(manual.detachedPending(), 0u);
    manual.runMainTurn();
    EXPECT_EQ(manual.detachedPending(), 1u);
}

TEST_F(StatsManagerFlights, AFastFollowUpStartsAsPartOfTheApplyStep) {
    const auto manager = makeSettled();
    manager->refreshFast();
    manager->refreshFast();
    manual.runNextDetached();
    manual.runMainTurn();
    EXPECT_EQ(manual.mainPending(), 0u);
    EXPECT_EQ(manual.detachedPending(), 1u);
}

TEST_F(StatsManagerFlights, AFlightWithoutRequestsMeanwhileHasNoFollowUp) {
    const auto manager = makeSettled();
    manager->refreshFast();
    manager->refreshSlow(false);
    settle();
    EXPECT_EQ(count("cpu"), 1u);
    EXPECT_EQ(count("storage"), 1u);
}

TEST_F(StatsManagerFlights, AFollowUpUsesUpTheQueuedRequest) {
    const auto manager = makeSettled();
    manager->refreshFast();
    manager->refreshFast();
    settle();
    takeCalls();
    manager->refreshFast();
    settle();
    EXPECT_EQ(count("cpu"), 1u);
}

TEST_F(StatsManagerFlights, ARequestDuringTheFollowUpYieldsAnother) {
    const auto manager = makeSettled();
    manager->refreshFast();
    manager->refreshFast();
    manual.runNextDetached();
    manual.runMainTurn();
    manager->refreshFast();
    settle();
    EXPECT_EQ(count("cpu"), 3u);
}

TEST_F(StatsManagerFlights, ARequestMadeAtAnyWriteOfTheApplyStepIsQueued) {
    const auto manager = makeSettled();
    int requests = 0;
    const auto subscription = manager->objectWillChange([&] {
        if (count("cpu") == 1) {
            ++requests;
            manager->refreshFast();
            EXPECT_EQ(manual.detachedPending(), 0u);
        }
    });
    manager->refreshFast();
    settle();
    EXPECT_EQ(requests, 7);
    EXPECT_EQ(count("cpu"), 2u);
}

TEST_F(StatsManagerFlights, TheFollowUpLooksAtVisibilityWhenItStarts) {
    const auto manager = makeSettled();
    manager->refreshFast();
    manager->popoverDidAppear();
    manual.runNextDetached();
    EXPECT_EQ(count("processes 3"), 0u);
    settle();
    EXPECT_EQ(count("processes 3"), 1u);
}

TEST_F(StatsManagerFlights, ARefreshKeepsTheVisibilityItStartedWith) {
    const auto manager = makeSettled();
    manager->popoverDidAppear();
    manager->popoverDidDisappear();
    settle();
    EXPECT_EQ(count("processes 3"), 1u);
    EXPECT_EQ(manager->topCPUProcesses->size(), 1u);
}

TEST_F(StatsManagerFlights, ASlowRefreshHasThreeStagesEachAppliedBeforeTheNext) {
    const auto manager = makeSettled();
    battery->quick.percentage = 61;
    battery->exact.percentage = 62;
    uptime = 99;
    manager->refreshSlow(false);

    ASSERT_TRUE(manual.runNextDetached());
    EXPECT_EQ(takeCalls(), (Calls{"battery"}));
    EXPECT_EQ(manual.detachedPending(), 0u);
    manual.runMainTurn();
    EXPECT_EQ(manager->batteryInfo->percentage, 61);
    EXPECT_EQ(manager->systemInfo->uptime, 77);

    ASSERT_TRUE(manual.runNextDetached());
    EXPECT_EQ(takeCalls(), (Calls{"storage", "uptime", "thermal"}));
    EXPECT_EQ(manual.detachedPending(), 0u);
    manual.runMainTurn();
    EXPECT_EQ(manager->systemInfo->uptime, 99);
    EXPECT_EQ(manager->batteryInfo->percentage, 61);

    ASSERT_TRUE(manual.runNextDetached());
    EXPECT_EQ(takeCalls(), (Calls{"health"}));
    manual.runMainTurn();
    EXPECT_EQ(manager->batteryInfo->percentage, 62);
    EXPECT_EQ(manual.detachedPending(), 0u);
}

TEST_F(StatsManagerFlights, ExactIsHandedToBothBatteryReadings) {
    const auto manager = makeSettled();
    manager->refreshSlow(true);
    settle();
    EXPECT_EQ(takeCalls(),
              (Calls{"battery forced", "storage", "uptime", "thermal", "health forced"}));
}

TEST_F(StatsManagerFlights, ASlowFlightLastsUntilTheHealthReadingIsApplied) {
    const auto manager = makeSettled();
    manager->refreshSlow(false);
    for (int stage = 0; stage < 3; ++stage) {
        manager->refreshSlow(false);
        EXPECT_EQ(manual.detachedPending(), 1u);
        manual.runNextDetached();
        manager->refreshSlow(false);
        EXPECT_EQ(manual.detachedPending(), 0u);
        manual.runMainTurn();
    }
    // The follow-up of all those requests.
    EXPECT_EQ(manual.detachedPending(), 1u);
    takeCalls();
    settle();
    EXPECT_EQ(takeCalls(), (Calls{"battery", "storage", "uptime", "thermal", "health"}));
}

TEST_F(StatsManagerFlights, ARequestMadeAtAnyWriteOfTheThreeStagesIsQueued) {
    const auto manager = makeSettled();
    int requests = 0;
    const auto subscription = manager->objectWillChange([&] {
        if (count("battery") == 1) {
            ++requests;
            manager->refreshSlow(false);
            EXPECT_EQ(manual.detachedPending(), 0u);
        }
    });
    manager->refreshSlow(false);
    settle();
    EXPECT_EQ(requests, 7);
    EXPECT_EQ(count("battery"), 2u);
    EXPECT_EQ(count("health"), 2u);
}

TEST_F(StatsManagerFlights, QueuedInexactThenExactYieldsOneExactFollowUp) {
    const auto manager = makeSettled();
    manager->refreshSlow(false);
    manager->refreshSlow(false);
    manager->refreshSlow(true);
    settle();
    EXPECT_EQ(takeCalls(),
              (Calls{"battery", "storage", "uptime", "thermal", "health", "battery forced",
                     "storage", "uptime", "thermal", "health forced"}));
}

TEST_F(StatsManagerFlights, AnExactRequestIsNotLostToLaterInexactOnes) {
    const auto manager = makeSettled();
    manager->refreshSlow(false);
    manager->refreshSlow(true);
    manager->refreshSlow(false);
    settle();
    EXPECT_EQ(count("battery forced"), 1u);
    EXPECT_EQ(count("health forced"), 1u);
}

TEST_F(StatsManagerFlights, BothQueuedFlagsAreClearOnceTheFollowUpStarts) {
    const auto manager = makeSettled();
    manager->refreshSlow(false);
    manager->refreshSlow(true);
    manual.runNextDetached();
    manual.runMainTurn();
    manual.runNextDetached();
    manual.runMainTurn();
    manual.runNextDetached();
    manual.runMainTurn();
    // The follow-up is in flight; an inexact request queued now must stay inexact.
    takeCalls();
    manager->refreshSlow(false);
    settle();
    EXPECT_EQ(takeCalls(), (Calls{"battery forced", "storage", "uptime", "thermal", "health forced",
                                  "battery", "storage", "uptime", "thermal", "health"}));
}

TEST_F(StatsManagerFlights, QueuedInexactRequestsYieldAnInexactFollowUpEvenOfAnExactFlight) {
    const auto manager = makeSettled();
    manager->refreshSlow(true);
    manager->refreshSlow(false);
    settle();
    EXPECT_EQ(count("battery forced"), 1u);
    EXPECT_EQ(count("battery"), 1u);
}

TEST_F(StatsManagerFlights, ARefreshThatNeverBeganIsTriedAgainAtTheNextRequest) {
    const auto manager = makeSettled();
    manual.refuseDetached(true);
    manager->refreshNow();
    settle();
    EXPECT_TRUE(takeCalls().empty());
    manual.refuseDetached(false);
    manager->refreshFast();
    settle();
    EXPECT_EQ(takeCalls(), (Calls{"cpu", "gpu", "memory", "network"}));
    manager->refreshSlow(false);
    settle();
    EXPECT_EQ(takeCalls(), (Calls{"battery", "storage", "uptime", "thermal", "health"}));
}

TEST_F(StatsManagerFlights, ASlowRefreshThatCannotGoOnIsTriedAgainAndKeepsWhatIsQueued) {
    const auto manager = makeSettled();
    manager->refreshSlow(false);
    manager->refreshSlow(true);
    manual.runNextDetached();
    manual.refuseDetached(true);
    settle();
    EXPECT_EQ(takeCalls(), (Calls{"battery"}));
    manual.refuseDetached(false);
    manager->refreshSlow(false);
    settle();
    EXPECT_EQ(takeCalls(),
              (Calls{"battery", "storage", "uptime", "thermal", "health", "battery forced",
                     "storage", "uptime", "thermal", "health forced"}));
}

TEST_F(StatsManagerFlights, WithoutAThreadToPruneTheResultIsAppliedAllTheSame) {
    const auto manager = makeSettled();
    manager->popoverDidAppear();
    settle();
    for (int refresh = 2; refresh < StatsManager::kVisibleRefreshesPerPrune; ++refresh) {
        manager->refreshFast();
        settle();
    }
    cpu = makeCPU(77, 4);
    manager->refreshFast();
    manual.runNextDetached();
    manual.refuseDetached(true);
    settle();
    EXPECT_EQ(count("prune"), 0U);
    EXPECT_EQ(manager->cpuInfo->usagePercentage, 77);
    manual.refuseDetached(false);
    cpu = makeCPU(78, 4);
    manager->refreshFast();
    settle();
    EXPECT_EQ(manager->cpuInfo->usagePercentage, 78);
}

TEST_F(StatsManagerFlights, FastRefreshesGoOnWhileASlowOneHangs) {
    const auto manager = makeSettled();
    bool hung = false;
    duringCall = [&](const std::string& call) {
        if (call == "health" && !std::exchange(hung, true)) {
            for (int i = 0; i < 3; ++i) {
                manager->refreshFast();
                manual.runNextDetached();
                manual.runMainTurn();
            }
        }
    };
    manager->refreshSlow(false);
    settle();
    EXPECT_TRUE(hung);
    EXPECT_EQ(takeCalls(), (Calls{"battery", "storage", "uptime", "thermal", "health", "cpu", "gpu",
                                  "memory", "network", "cpu", "gpu", "memory", "network", "cpu",
                                  "gpu", "memory", "network"}));
    EXPECT_EQ(manager->cpuUsageHistory->size(), 4u);
}

TEST_F(StatsManagerFlights, SlowRefreshesGoOnWhileAFastOneHangs) {
    const auto manager = makeSettled();
    bool hung = false;
    duringCall = [&](const std::string& call) {
        if (call == "gpu" && !std::exchange(hung, true)) {
            manager->refreshSlow(false);
            for (int stage = 0; stage < 3; ++stage) {
                manual.runNextDetached();
                manual.runMainTurn();
            }
            EXPECT_EQ(count("health"), 1u);
            EXPECT_EQ(manager->cpuUsageHistory->size(), 1u);
        }
    };
    manager->refreshFast();
    manual.runNextDetached();
    EXPECT_TRUE(hung);
    EXPECT_EQ(takeCalls(), (Calls{"cpu", "gpu", "battery", "storage", "uptime", "thermal", "health",
                                  "memory", "network"}));
}

TEST_F(StatsManagerFlights, RefreshNowIsAFastThenAnExactSlowRefresh) {
    const auto manager = makeSettled();
    manager->refreshNow();
    EXPECT_EQ(manual.detachedPending(), 2u);
    manual.runNextDetached();
    EXPECT_EQ(takeCalls(), (Calls{"cpu", "gpu", "memory", "network"}));
    settle();
    EXPECT_EQ(takeCalls(),
              (Calls{"battery forced", "storage", "uptime", "thermal", "health forced"}));
}

TEST_F(StatsManagerFlights, RefreshNowDuringFlightsQueuesBothAndStaysExact) {
    const auto manager = make();
    manager->refreshNow();
    EXPECT_EQ(manual.detachedPending(), 2u);
    settle();
    EXPECT_EQ(count("cpu"), 2u);
    EXPECT_EQ(count("battery"), 1u);
    EXPECT_EQ(count("battery forced"), 1u);
}

}  // namespace
}  // namespace tarnwick::testing
