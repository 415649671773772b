// SPDX-License-Identifier: MIT
// What is published, in which order, and what is kept.
#include "tests/core/stats_manager_fixture.h"
#include "tests/services/no_battery.h"

namespace tarnwick::testing {
namespace {

class StatsManagerApply : public StatsManagerTest {
 protected:
    template <class T>
    void watch(Published<T>& field, const std::string& name) {
        subscriptions_.push_back(field.willChange([this, name] { writes.push_back(name); }));
    }
    void watchAll(StatsManager& manager) {
        watch(manager.batteryInfo, "batteryInfo");
        watch(manager.batteryDetectionComplete, "batteryDetectionComplete");
        watch(manager.storageInfo, "storageInfo");
        watch(manager.memoryInfo, "memoryInfo");
        watch(manager.cpuInfo, "cpuInfo");
        watch(manager.gpuInfo, "gpuInfo");
        watch(manager.systemInfo, "systemInfo");
        watch(manager.topCPUProcesses, "topCPUProcesses");
        watch(manager.topMemoryProcesses, "topMemoryProcesses");
        watch(manager.cpuUsageHistory, "cpuUsageHistory");
        watch(manager.gpuUsageHistory, "gpuUsageHistory");
        watch(manager.memoryUsageHistory, "memoryUsageHistory");
        watch(manager.storageUsageHistory, "storageUsageHistory");
        watch(manager.networkInfo, "networkInfo");
    }

    /// Names of the fields written, in order.
    Calls writes;

 private:
    std::vector<Subscription> subscriptions_;
};

TEST_F(StatsManagerApply, EverythingIsEmptyBeforeTheFirstRefresh) {
    const auto manager = make();
    EXPECT_FALSE(manager->batteryInfo->hasBattery);
    EXPECT_FALSE(*manager->batteryDetectionComplete);
    EXPECT_TRUE(manager->storageInfo->empty());
    EXPECT_EQ(manager->memoryInfo->total, 0u);
    EXPECT_EQ(manager->cpuInfo->idlePercentage, 100);
    EXPECT_EQ(manager->cpuInfo->coreCount, 0);
    EXPECT_FALSE(manager->gpuInfo->isAvailable);
    EXPECT_EQ(manager->systemInfo->uptime, 0);
    EXPECT_TRUE(manager->topCPUProcesses->empty());
    EXPECT_TRUE(manager->topMemoryProcesses->empty());
    EXPECT_TRUE(manager->cpuUsageHistory->empty());
    EXPECT_TRUE(manager->gpuUsageHistory->empty());
    EXPECT_TRUE(manager->memoryUsageHistory->empty());
    EXPECT_TRUE(manager->storageUsageHistory->empty());
    EXPECT_FALSE(manager->networkInfo->hasSample);
    EXPECT_FALSE(manager->isPopoverVisible());
}

TEST_F(StatsManagerApply, AHiddenFastRefreshWritesSevenFieldsInOrder) {
    const auto manager = makeSettled();
    watchAll(*manager);
    manager->refreshFast();
    settle();
    EXPECT_EQ(writes, (Calls{"cpuInfo", "gpuInfo", "memoryInfo", "networkInfo", "cpuUsageHistory",
                             "gpuUsageHistory", "memoryUsageHistory"}));
}

TEST_F(StatsManagerApply, AVisibleFastRefreshWritesTheListsBeforeTheHistories) {
    const auto manager = makeSettled();
    watchAll(*manager);
    manager->popoverDidAppear();
    settle();
    EXPECT_EQ(writes, (Calls{"cpuInfo", "gpuInfo", "memoryInfo", "networkInfo", "topCPUProcesses",
                             "topMemoryProcesses", "cpuUsageHistory", "gpuUsageHistory",
                             "memoryUsageHistory"}));
}

TEST_F(StatsManagerApply, ASlowRefreshWritesBatteryThenStorageThenHealth) {
    const auto manager = makeSettled();
    watchAll(*manager);
    manager->refreshSlow(false);
    settle();
    EXPECT_EQ(writes, (Calls{"batteryInfo", "batteryDetectionComplete", "storageInfo", "systemInfo",
                             "storageUsageHistory", "batteryInfo"}));
}

TEST_F(StatsManagerApply, EachWriteIsAnnouncedByItselfAndBeforeItHappens) {
    const auto manager = makeSettled();
    cpu.usagePercentage = 55;
    int announcements = 0;
    const auto object = manager->objectWillChange([&] { ++announcements; });
    double seen = -1;
    const auto field =
        manager->cpuInfo.willChange([&] { seen = manager->cpuInfo->usagePercentage; });
    manager->refreshFast();
    settle();
    EXPECT_EQ(announcements, 7);
    EXPECT_EQ(seen, 11);
    EXPECT_EQ(manager->cpuInfo->usagePercentage, 55);
}

TEST_F(StatsManagerApply, NothingIsPublishedOffTheMainThread) {
    const auto manager = makeSettled();
    int inBackground = 0;
    const auto object =
        manager->objectWillChange([&] { inBackground += manual.isInBackground() ? 1 : 0; });
    manager->popoverDidAppear();
    manager->refreshNow();
    settle();
    EXPECT_EQ(inBackground, 0);
}

TEST_F(StatsManagerApply, TheRecordsAreThoseOfTheSamplers) {
    const auto manager = make();
    settle();
    EXPECT_EQ(manager->cpuInfo->usagePercentage, 11);
    EXPECT_EQ(manager->gpuInfo->usagePercentage, 12);
    EXPECT_EQ(manager->memoryInfo->used, 26u);
    EXPECT_EQ(manager->networkInfo->downloadBytesPerSecond, 5);
    EXPECT_EQ(manager->systemInfo->uptime, 77);
    EXPECT_EQ(manager->batteryInfo->health, 91);
    ASSERT_EQ(manager->storageInfo->size(), 1u);
    EXPECT_EQ(manager->storageInfo->at(0).usedSpace, 140);
}

TEST_F(StatsManagerApply, HiddenRefreshesLeaveTheProcessListsAlone) {
    const auto manager = makeSettled();
    manager->popoverDidAppear();
    settle();
    processes = {};
    manager->popoverDidDisappear();
    manager->refreshFast();
    settle();
    ASSERT_EQ(manager->topCPUProcesses->size(), 1u);
    EXPECT_EQ(manager->topCPUProcesses->at(0).name, "busy");
    ASSERT_EQ(manager->topMemoryProcesses->size(), 1u);
    EXPECT_EQ(manager->topMemoryProcesses->at(0).name, "big");
    // An empty list from a visible refresh does replace them.
    manager->popoverDidAppear();
    settle();
    EXPECT_TRUE(manager->topCPUProcesses->empty());
    EXPECT_TRUE(manager->topMemoryProcesses->empty());
}

TEST_F(StatsManagerApply, DetectionIsCompleteAfterTheFirstStageEvenWithoutABattery) {
    battery->quick = {};
    battery->exact = {};
    const auto manager = make();
    manual.runDetached();
    EXPECT_FALSE(*manager->batteryDetectionComplete);
    manual.runMainTurn();
    EXPECT_TRUE(*manager->batteryDetectionComplete);
    EXPECT_FALSE(manager->batteryInfo->hasBattery);
    settle();
    manager->refreshSlow(true);
    settle();
    EXPECT_TRUE(*manager->batteryDetectionComplete);
}

TEST_F(StatsManagerApply, DataHasBeenCollectedOnceAProcessorCountIsKnown) {
    gpu = {};
    memory = {};
    const auto manager = make();
    EXPECT_FALSE(manager->hasCollectedData());
    manual.runNextDetached();
    EXPECT_FALSE(manager->hasCollectedData());
    manual.runMainTurn();
    EXPECT_TRUE(manager->hasCollectedData());
}

TEST_F(StatsManagerApply, AnyOneOfFourRecordsCountsAsCollectedData) {
    cpu = {};
    gpu = {};
    memory = {};
    const auto manager = make();
    manual.runNextDetached();
    manual.runMainTurn();
    EXPECT_FALSE(manager->hasCollectedData());
    manager->cpuInfo.set(makeCPU(50, -1));
    EXPECT_FALSE(manager->hasCollectedData());
    manager->gpuInfo.set(makeGPU(0, true));
    EXPECT_TRUE(manager->hasCollectedData());
    manager->gpuInfo.set(makeGPU(50, false));
    EXPECT_FALSE(manager->hasCollectedData());
    manager->memoryInfo.set({.total = 1});
    EXPECT_TRUE(manager->hasCollectedData());
    manager->memoryInfo.set({.used = 1});
    EXPECT_FALSE(manager->hasCollectedData());
    settle();
    EXPECT_TRUE(manager->hasCollectedData());
}

TEST_F(StatsManagerApply, ThePrimaryStorageIsTheLargestAndTheEarlierOfEquals) {
    const auto manager = make();
    EXPECT_FALSE(manager->primaryStorage());
    manager->storageInfo.set({makeVolume(5, 0, "a"), makeVolume(9, 0, "b"), makeVolume(9, 0, "c"),
                              makeVolume(7, 0, "d")});
    EXPECT_EQ(manager->primaryStorage()->name, "b");
    manager->storageInfo.set({makeVolume(-5, 0, "a"), makeVolume(-9, 0, "b")});
    EXPECT_EQ(manager->primaryStorage()->name, "a");
}

TEST_F(StatsManagerApply, TheDetectionCompletesOnAMachineWithoutABattery) {
    StatsManager manager(
        &settings, noBattery(store), 30, 120,
        StatsManagerEnvironment{manual,
                                {.readCPUInfo = [] { return CPUInfo{}; },
                                 .readGPUInfo = [] { return GPUInfo{}; },
                                 .readMemoryInfo = [] { return MemoryInfo{}; },
                                 .readNetworkInfo = [] { return NetworkInfo{}; },
                                 .readTopProcesses = {},
                                 .pruneStaleProcesses = {},
                                 .releaseProcessCaches = [] {},
                                 .readStorageInfo = [] { return StorageInfo{}; },
                                 .readThermalState = [] { return std::int64_t{0}; },
                                 .readUptime = [] { return 0.0; }},
                                [] { return 0.0; },
                                platform::Logger()});
    settle();
    EXPECT_TRUE(*manager.batteryDetectionComplete);
    EXPECT_FALSE(manager.batteryInfo->hasBattery);
    EXPECT_EQ(&manager.settings(), &settings);
}

}  // namespace
}  // namespace tarnwick::testing
