// SPDX-License-Identifier: MIT
// The four histories.
#include <set>

#include "tests/core/stats_manager_fixture.h"

namespace tarnwick::testing {
namespace {

class StatsManagerHistory : public StatsManagerTest {
 protected:
    static std::vector<double> values(const Published<std::vector<UsageSample>>& history) {
        std::vector<double> result;
        for (const UsageSample& sample : *history) {
            result.push_back(sample.value);
        }
        return result;
    }
};

TEST_F(StatsManagerHistory, EachRefreshAppendsItsUsages) {
    const auto manager = make();
    settle();
    cpu.usagePercentage = 21;
    gpu.usagePercentage = 22;
    memory.used = 46;
    storage->usedSpace = 240;
    manager->refreshNow();
    settle();
    EXPECT_EQ(values(manager->cpuUsageHistory), (std::vector<double>{11, 21}));
    EXPECT_EQ(values(manager->gpuUsageHistory), (std::vector<double>{12, 22}));
    EXPECT_EQ(values(manager->memoryUsageHistory), (std::vector<double>{13, 23}));
    ASSERT_EQ(manager->storageUsageHistory->size(), 2u);
    EXPECT_DOUBLE_EQ(manager->storageUsageHistory->at(0).value, 14);
    EXPECT_DOUBLE_EQ(manager->storageUsageHistory->at(1).value, 24);
}

TEST_F(StatsManagerHistory, AnUnavailableGPUIsAppendedAllTheSame) {
    gpu = {};
    const auto manager = make();
    settle();
    EXPECT_EQ(values(manager->gpuUsageHistory), (std::vector<double>{0}));
    gpu.usagePercentage = 7;
    manager->refreshFast();
    settle();
    EXPECT_EQ(values(manager->gpuUsageHistory), (std::vector<double>{0, 7}));
}

TEST_F(StatsManagerHistory, AMemoryTotalOfZeroIsRecordedAsZero) {
    memory = {.total = 0, .used = 5};
    const auto manager = make();
    settle();
    EXPECT_EQ(values(manager->memoryUsageHistory), (std::vector<double>{0}));
}

TEST_F(StatsManagerHistory, AStorageTotalBelowOneIsRecordedAsZero) {
    storage = makeVolume(0, 5);
    const auto manager = make();
    settle();
    storage = makeVolume(-10, 5);
    manager->refreshSlow(false);
    settle();
    EXPECT_EQ(values(manager->storageUsageHistory), (std::vector<double>{0, 0}));
}

TEST_F(StatsManagerHistory, AfterSixtyOneAppendsSixtyAreLeftBeginningWithTheSecond) {
    const auto manager = make();
    settle();
    for (int i = 2; i <= 61; ++i) {
        if (i == 61) {
            EXPECT_EQ(manager->cpuUsageHistory->size(), 60u);
            EXPECT_EQ(manager->cpuUsageHistory->front().value, 11);
        }
        cpu.usagePercentage = gpu.usagePercentage = i;
        memory = {.total = 100, .used = static_cast<std::uint64_t>(i)};
        storage = makeVolume(100, i);
        manager->refreshNow();
        settle();
    }
    for (const auto* history : {&manager->cpuUsageHistory, &manager->gpuUsageHistory,
                                &manager->memoryUsageHistory, &manager->storageUsageHistory}) {
        ASSERT_EQ((*history)->size(), 60u);
        EXPECT_EQ((*history)->front().value, 2);
        EXPECT_EQ((*history)->back().value, 61);
    }
}

TEST_F(StatsManagerHistory, TheTimeStampIsTheMomentOfAppending) {
    const auto manager = makeSettled();
    manager->refreshFast();
    wallTime = 6000;
    manual.runNextDetached();
    wallTime = 7000;
    manual.runMainTurn();
    EXPECT_EQ(manager->cpuUsageHistory->front().timestamp, 5000);
    EXPECT_EQ(manager->cpuUsageHistory->back().timestamp, 7000);
    EXPECT_EQ(manager->memoryUsageHistory->back().timestamp, 7000);
}

TEST_F(StatsManagerHistory, EverySampleHasAnIdentityOfItsOwn) {
    const auto manager = make();
    settle();
    manager->refreshNow();
    settle();
    std::set<std::array<std::uint8_t, 16>> ids;
    for (const auto* history : {&manager->cpuUsageHistory, &manager->gpuUsageHistory,
                                &manager->memoryUsageHistory, &manager->storageUsageHistory}) {
        for (const UsageSample& sample : **history) {
            ids.insert(sample.id.bytes);
        }
    }
    EXPECT_EQ(ids.size(), 8u);
}

}  // namespace
}  // namespace tarnwick::testing
