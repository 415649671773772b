// SPDX-License-Identifier: MIT
// Every fifteenth visible fast refresh forgets stale processes before it is applied.
#include "tests/core/stats_manager_fixture.h"

namespace tarnwick::testing {
namespace {

class StatsManagerPrune : public StatsManagerTest {
 protected:
    /// `number` whole fast refreshes, one after the other.
    void refresh(StatsManager& manager, int number) {
        for (int i = 0; i < number; ++i) {
            manager.refreshFast();
            settle();
        }
    }
};

TEST_F(StatsManagerPrune, TheFifteenthVisibleRefreshPrunesAndEachFifteenthAfter) {
    const auto manager = makeSettled();
    manager->popoverDidAppear();
    settle();
    refresh(*manager, 13);
    EXPECT_EQ(count("prune"), 0u);
    refresh(*manager, 1);
    EXPECT_EQ(count("prune"), 1u);
    refresh(*manager, 14);
    EXPECT_EQ(count("prune"), 1u);
    refresh(*manager, 1);
    EXPECT_EQ(count("prune"), 2u);
}

TEST_F(StatsManagerPrune, PruningHappensInTheBackgroundBetweenMeasuringAndApplying) {
    const auto manager = makeSettled();
    manager->popoverDidAppear();
    settle();
    refresh(*manager, 13);
    cpu.usagePercentage = 42;
    takeCalls();

    manager->refreshFast();
    manual.runNextDetached();
    EXPECT_EQ(takeCalls(), (Calls{"cpu", "gpu", "memory", "network", "thermal", "processes 3"}));
    manual.runMainTurn();
    // Counted, but neither pruned on the main thread nor applied.
    EXPECT_TRUE(calls.empty());
    EXPECT_EQ(manual.detachedPending(), 1u);
    EXPECT_EQ(manager->cpuInfo->usagePercentage, 11);

    manual.runNextDetached();
    EXPECT_EQ(takeCalls(), (Calls{"prune"}));
    EXPECT_EQ(manager->cpuInfo->usagePercentage, 11);
    manual.runMainTurn();
    EXPECT_EQ(manager->cpuInfo->usagePercentage, 42);
    EXPECT_EQ(manual.detachedPending(), 0u);
}

TEST_F(StatsManagerPrune, TheFlightGoesOnWhilePruning) {
    const auto manager = makeSettled();
    manager->popoverDidAppear();
    settle();
    refresh(*manager, 13);
    manager->refreshFast();
    manual.runNextDetached();
    manual.runMainTurn();
    manager->refreshFast();
    EXPECT_EQ(manual.detachedPending(), 1u);
    takeCalls();
    settle();
    EXPECT_EQ(takeCalls(),
              (Calls{"prune", "cpu", "gpu", "memory", "network", "thermal", "processes 3"}));
}

TEST_F(StatsManagerPrune, RefreshesStartedWhileHiddenDoNotCount) {
    const auto manager = makeSettled();
    refresh(*manager, 40);
    EXPECT_EQ(count("prune"), 0u);
    manager->popoverDidAppear();
    settle();
    refresh(*manager, 13);
    EXPECT_EQ(count("prune"), 0u);
    refresh(*manager, 1);
    EXPECT_EQ(count("prune"), 1u);
}

TEST_F(StatsManagerPrune, HidingThePanelDoesNotResetTheCount) {
    const auto manager = makeSettled();
    for (int shown = 0; shown < 15; ++shown) {
        EXPECT_EQ(count("prune"), 0u);
        manager->popoverDidAppear();
        settle();
        manager->popoverDidDisappear();
        refresh(*manager, 3);
    }
    EXPECT_EQ(count("prune"), 1u);
}

TEST_F(StatsManagerPrune, ARefreshStartedWhileVisibleCountsEvenIfThePanelHasGoneMeanwhile) {
    const auto manager = makeSettled();
    manager->popoverDidAppear();
    settle();
    refresh(*manager, 13);
    manager->refreshFast();
    manager->popoverDidDisappear();
    settle();
    EXPECT_EQ(count("prune"), 1u);
}

TEST_F(StatsManagerPrune, TheFirstRefreshAfterThePanelHasGoneLetsGoOfWhatTheListsKeep) {
    const auto manager = makeSettled();
    manager->popoverDidAppear();
    settle();
    cacheReleases = 0;
    refresh(*manager, 3);
    manager->popoverDidDisappear();
    settle();
    EXPECT_EQ(cacheReleases, 0);
    refresh(*manager, 1);
    EXPECT_EQ(cacheReleases, 1);
}

TEST_F(StatsManagerPrune, AListRefreshStillUnderWayWhenThePanelGoesIsFollowedByTheRelease) {
    const auto manager = makeSettled();
    manager->popoverDidAppear();
    settle();
    cacheReleases = 0;
    manager->refreshFast();
    manager->popoverDidDisappear();
    manager->refreshFast();
    takeCalls();
    settle();
    EXPECT_EQ(takeCalls(), (Calls{"cpu", "gpu", "memory", "network", "thermal", "processes 3",
                                  "cpu", "gpu", "memory", "network"}));
    EXPECT_EQ(cacheReleases, 1);
}

}  // namespace
}  // namespace tarnwick::testing
