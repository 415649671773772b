// SPDX-License-Identifier: MIT
// A program of its own: it counts every allocation.
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "core/stats_manager.h"
#include "platform/testing/manual_dispatch.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/scripted_login_service.h"
#include "tests/core/counted_allocations.h"
#include "tests/services/no_battery.h"

namespace tarnwick {
namespace {

using platform::testing::Alive;

class StatsManagerGrowth : public ::testing::Test {
 protected:
    MetricSources sources() {
        return {
            .readCPUInfo =
                [this] {
                    ++fast;
                    CPUInfo info;
                    info.usagePercentage = static_cast<double>(fast % 101);
                    info.coreCount = 16;
                    info.coreUsages.assign(16, info.usagePercentage);
                    return info;
                },
            .readGPUInfo =
                [] {
                    GPUInfo info;
                    info.modelName = "A name too long to fit into the text object itself";
                    return info;
                },
            .readMemoryInfo = [] { return MemoryInfo{.total = 100, .used = 50}; },
            .readNetworkInfo = [] { return NetworkInfo{}; },
            .readTopProcesses =
                [this](int limit) {
                    ++passes;
                    TopProcessLists processes;
                    for (int i = 0; i < limit; ++i) {
                        processes.cpu.push_back({.id = i, .name = std::string(40, 'c')});
                        processes.memory.push_back({.id = i, .name = std::string(40, 'm')});
                    }
                    return processes;
                },
            .pruneStaleProcesses = [] {},
            .releaseProcessCaches = [] {},
            .readStorageInfo =
                [] {
                    StorageInfo info;
                    info.name = "A volume with a name that is allocated";
                    info.totalSpace = 10;
                    info.usedSpace = 5;
                    return info;
                },
            .readThermalState = [] { return std::int64_t{0}; },
            .readUptime = [this] { return dispatch.now(); },
        };
    }

    void expectBounded(const StatsManager& manager) {
        EXPECT_EQ(manager.cpuUsageHistory->size(), StatsManager::kHistoryLimit);
        EXPECT_EQ(manager.gpuUsageHistory->size(), StatsManager::kHistoryLimit);
        EXPECT_EQ(manager.memoryUsageHistory->size(), StatsManager::kHistoryLimit);
        EXPECT_EQ(manager.storageUsageHistory->size(), StatsManager::kHistoryLimit);
        EXPECT_EQ(manager.topCPUProcesses->size(), 3u);
        EXPECT_EQ(dispatch.mainPending() + dispatch.detachedPending(), 0u);
    }

    std::int64_t fast = 0;
    std::int64_t passes = 0;
    platform::testing::ManualDispatch dispatch;
    platform::testing::MemoryUserDefaults store;
    platform::testing::ScriptedLoginService loginService;
    UserSettings settings{store, loginService};
};

TEST_F(StatsManagerGrowth, AHundredThousandRefreshesLeaveNotOneByteMoreThanTheFirstOnes) {
    StatsManager manager(
        &settings, noBattery(store), 30, 120,
        {dispatch, sources(), [this] { return dispatch.now(); }, platform::Logger()});
    const auto subscription = manager.objectWillChange([] {});
    // A cycle is ten minutes with the panel and an hour without.
    const auto cycle = [&] {
        manager.popoverDidAppear();
        dispatch.advance(600);
        manager.popoverDidDisappear();
        manager.refreshNow();
        manager.refreshNow();
        dispatch.advance(3600);
    };
    // Warm-up: until every history is full.
    cycle();
    cycle();
    cycle();
    expectBounded(manager);
    const Alive before = Alive::now();
    const std::int64_t start = fast;
    while (fast - start < 100000) {
        cycle();
        ASSERT_EQ(Alive::now(), before) << fast;
    }
    expectBounded(manager);
    EXPECT_GT(passes, 30000);
}

TEST_F(StatsManagerGrowth, AManagerThatGoesInMidFlightLeavesNothing) {
    const auto comeAndGo = [this] {
        auto manager = std::make_unique<StatsManager>(
            &settings, noBattery(store), 30, 120,
            StatsManagerEnvironment{dispatch, sources(), [this] { return dispatch.now(); },
                                    platform::Logger()});
        dispatch.advance(1000);
        manager->popoverDidAppear();
        manager->refreshNow();
        manager->refreshNow();
        manager.reset();
        dispatch.runMain();
    };
    // The first time the dispatch allocates room for its timers, and keeps it.
    comeAndGo();
    const Alive before = Alive::now();
    comeAndGo();
    EXPECT_EQ(Alive::now(), before);
}

}  // namespace
}  // namespace tarnwick
