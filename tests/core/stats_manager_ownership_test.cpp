// SPDX-License-Identifier: MIT
// What is left to do when the manager has gone: nothing.
#include "tests/core/stats_manager_fixture.h"

namespace tarnwick::testing {
namespace {

class StatsManagerOwnership : public StatsManagerTest {
 protected:
    /// A manager with its panel visible. Its next fast refresh prunes.
    std::unique_ptr<StatsManager> makePruningNext() {
        auto manager = makeSettled();
        manager->popoverDidAppear();
        settle();
        for (int i = 0; i < 13; ++i) {
            manager->refreshFast();
            settle();
        }
        return manager;
    }
};

TEST_F(StatsManagerOwnership, DestructionInvalidatesTheFastTimerThenTheSlowOne) {
    auto manager = makeSettled();
    manager.reset();
    EXPECT_EQ(takeEvents(), (Calls{"invalidate 10", "invalidate 120"}));
}

TEST_F(StatsManagerOwnership, NoTimerFiresAfterDestruction) {
    auto manager = makeSettled();
    manager.reset();
    manual.advance(100000);
    EXPECT_EQ(manual.wakeUps(), 0u);
    EXPECT_TRUE(calls.empty());
}

TEST_F(StatsManagerOwnership, ATimerHandlerThatRunsLateDoesNothing) {
    auto manager = makeSettled();
    manager.reset();
    takeEvents();
    for (const auto& handler : dispatch.handlers) {
        handler();
    }
    EXPECT_TRUE(takeEvents().empty());
}

TEST_F(StatsManagerOwnership, AFastResultThatComesTooLateIsDropped) {
    auto manager = makeSettled();
    manager->refreshFast();
    manager->refreshFast();
    manual.runNextDetached();
    manager.reset();
    manual.runMain();
    EXPECT_EQ(manual.detachedPending(), 0u);
}

TEST_F(StatsManagerOwnership, ABodyThatStartsTooLateLeavesNothingBehind) {
    auto manager = makeSettled();
    manager->refreshNow();
    manager.reset();
    settle();
    EXPECT_EQ(manual.detachedPending(), 0u);
    EXPECT_EQ(manual.mainPending(), 0u);
}

TEST_F(StatsManagerOwnership, ASlowRefreshEndsWithTheStageThatFindsNoManager) {
    for (const std::size_t stages : {1u, 2u, 3u}) {
        auto manager = makeSettled();
        manager->refreshSlow(false);
        manager->refreshSlow(true);
        for (std::size_t stage = 1; stage < stages; ++stage) {
            manual.runNextDetached();
            manual.runMainTurn();
        }
        manual.runNextDetached();
        manager.reset();
        manual.runMain();
        EXPECT_EQ(manual.detachedPending(), 0u) << stages;
        EXPECT_EQ(count("health"), stages == 3 ? 1u : 0u) << stages;
    }
}

TEST_F(StatsManagerOwnership, NothingIsPrunedWhenTheManagerHasGone) {
    auto manager = makePruningNext();
    manager->refreshFast();
    manual.runNextDetached();
    manager.reset();
    manual.runMain();
    EXPECT_EQ(manual.detachedPending(), 0u);
    EXPECT_EQ(count("prune"), 0u);
}

TEST_F(StatsManagerOwnership, AManagerThatGoesWhilePruningIsNotApplied) {
    auto manager = makePruningNext();
    manager->refreshFast();
    manual.runNextDetached();
    manual.runMainTurn();
    manager.reset();
    settle();
    EXPECT_EQ(count("prune"), 1u);
    EXPECT_EQ(manual.detachedPending(), 0u);
}

TEST_F(StatsManagerOwnership, AManagerThatGoesAfterPruningIsNotApplied) {
    auto manager = makePruningNext();
    manager->refreshFast();
    manager->refreshFast();
    manual.runNextDetached();
    manual.runMainTurn();
    manual.runNextDetached();
    EXPECT_EQ(count("prune"), 1u);
    manager.reset();
    manual.runMain();
    EXPECT_EQ(manual.detachedPending(), 0u);
}

TEST_F(StatsManagerOwnership, ARefreshInFlightDoesNotKeepTheManager) {
    auto manager = makeSettled();
    const auto sentinel = std::make_shared<int>();
    const auto subscription = manager->objectWillChange([sentinel] {});
    manager->refreshFast();
    EXPECT_EQ(sentinel.use_count(), 2);
    manager.reset();
    // The observers went with the manager, though its refresh is still in flight.
    EXPECT_EQ(sentinel.use_count(), 1);
    EXPECT_EQ(manual.detachedPending(), 1u);
}

TEST_F(StatsManagerOwnership, ASlowRefreshInFlightKeepsTheBatteryService) {
    auto manager = makeSettled();
    const std::weak_ptr<BatteryReader> service = battery;
    manager->refreshSlow(false);
    manager.reset();
    battery.reset();
    EXPECT_FALSE(service.expired());
    settle();
    EXPECT_TRUE(service.expired());
}

TEST_F(StatsManagerOwnership, TheManagerKeepsItsBatteryServiceBetweenRefreshes) {
    auto manager = makeSettled();
    const std::weak_ptr<BatteryReader> service = battery;
    battery.reset();
    EXPECT_FALSE(service.expired());
    manager.reset();
    EXPECT_TRUE(service.expired());
}

}  // namespace
}  // namespace tarnwick::testing
