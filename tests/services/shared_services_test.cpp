// The process-wide instances. They take what the platform offers when they are first used, so these
// tests install one scripted platform that lives as long as the process.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <latch>
#include <set>
#include <thread>
#include <vector>

#include "platform/platform.h"
#include "platform/testing/scripted_kernel.h"
#include "services/battery_service.h"
#include "services/cpu_service.h"
#include "services/memory_service.h"

namespace tarnwick {
namespace {

platform::testing::ScriptedKernel& installedKernel() {
    static auto& kernel = []() -> platform::testing::ScriptedKernel& {
        auto& made = *new platform::testing::ScriptedKernel;
        platform::install({.kernel = &made});
        return made;
    }();
    return kernel;
}

TEST(SharedServices, TheCPUServiceIsOneInstanceOnTheInstalledPlatform) {
    auto& kernel = installedKernel();
    kernel.answers.logicalCPUCount.set(6);
    CPUService& service = CPUService::shared();
    EXPECT_EQ(&service, &CPUService::shared());
    EXPECT_EQ(service.readCPUInfo().coreCount, 6);
}

TEST(SharedServices, TheCPUServiceKeepsItsTicksBetweenUses) {
    auto& kernel = installedKernel();
    kernel.answers.hostProcessorInfo.set(platform::testing::processorTicks({{10, 0, 10, 0}}));
    CPUService::shared().readCPUInfo();
    kernel.answers.hostProcessorInfo.set(platform::testing::processorTicks({{35, 0, 85, 0}}));
    EXPECT_DOUBLE_EQ(CPUService::shared().readCPUInfo().usagePercentage, 25);
}

TEST(SharedServices, TheMemoryServiceIsMadeOnFirstUse) {
    auto& kernel = installedKernel();
    kernel.clearCalls();
    MemoryService& service = MemoryService::shared();
    EXPECT_EQ(&service, &MemoryService::shared());
    EXPECT_THAT(kernel.calls(), testing::ElementsAre("pageSize"));

    kernel.answers.memorySize.set(1234);
    EXPECT_EQ(service.readMemoryInfo().total, 1234U);
}

TEST(SharedServices, TheBatteryServiceIsOneInstance) {
    const auto service = BatteryService::shared();
    ASSERT_NE(service, nullptr);
    EXPECT_EQ(service, BatteryService::shared());
    EXPECT_FALSE(service->currentBatteryInfo(false).hasBattery);
}

TEST(SharedServices, ThreadsThatComeTogetherFindTheSameInstances) {
    installedKernel();
    constexpr std::size_t kThreads = 4;
    std::latch start(kThreads);
    std::vector<const void*> found(3 * kThreads);
    {
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < kThreads; ++i) {
            threads.emplace_back([&, i] {
                start.arrive_and_wait();
                found[3 * i] = &CPUService::shared();
                found[3 * i + 1] = &MemoryService::shared();
                found[3 * i + 2] = BatteryService::shared().get();
            });
        }
    }
    EXPECT_EQ(std::set(found.begin(), found.end()).size(), 3U);
}

}  // namespace
}  // namespace tarnwick
