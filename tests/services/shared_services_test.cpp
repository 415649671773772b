// SPDX-License-Identifier: MIT
// The process-wide instances. They take what the platform offers when they are first used, so these
// tests install one scripted platform that lives as long as the process.
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <latch>
#include <set>
#include <utility>
#include <vector>

#include "platform/platform.h"
#include "platform/testing/joined_thread.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/scripted_accelerators.h"
#include "platform/testing/scripted_kernel.h"
#include "platform/testing/scripted_network_interfaces.h"
#include "platform/testing/scripted_power_sources.h"
#include "platform/testing/scripted_process_table.h"
#include "services/battery_service.h"
#include "services/cpu_service.h"
#include "services/gpu_service.h"
#include "services/memory_service.h"
#include "services/network_service.h"
#include "services/process_service.h"

namespace tarnwick {
namespace {

/// Workers whose work comes back at once or, while they hang, when the test lets it.
class HangingWorkers final : public platform::Workers {
 public:
    /// How long each piece of work was, or would have been, waited for.
    std::vector<double> waits{};

    Outcome run(std::function<void()> work, double seconds) override {
        waits.push_back(seconds);
        if (!hangs_) {
            return platform::noWorkers().run(std::move(work), seconds);
        }
        late_.push_back(std::move(work));
        return Outcome::late;
    }
    void hang() { hangs_ = true; }
    void comeBack() {
        hangs_ = false;
        for (const auto& work : std::exchange(late_, {})) {
            work();
        }
    }

 private:
    bool hangs_ = false;
    std::vector<std::function<void()>> late_;
};

/// The machine under the process-wide instances, which keep it for good.
struct Machine {
    HangingWorkers workers;
    platform::testing::ScriptedKernel kernel;
    platform::testing::ScriptedNetworkInterfaces networkInterfaces;
    platform::testing::ScriptedPowerSources powerSources;
    platform::testing::ScriptedProcessTable processTable;
    platform::testing::ScriptedAccelerators accelerators;
    platform::testing::MemoryUserDefaults store;

    static Machine& installed() {
        static Machine& machine = *[] {
            auto* made = new Machine;
            made->powerSources.healthTakes = 4;
            platform::Platform platform;
            platform.kernel = &made->kernel;
            platform.networkInterfaces = &made->networkInterfaces;
            platform.powerSources = &made->powerSources;
            platform.batteryHealth = &made->powerSources;
            platform.processTable = &made->processTable;
            platform.accelerators = &made->accelerators;
            platform.userDefaults = &made->store;
            platform.workers = &made->workers;
            platform::install(platform);
            return made;
        }();
        return machine;
    }
};

platform::testing::ScriptedKernel& installedKernel() {
    return Machine::installed().kernel;
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

TEST(SharedServices, TheNetworkServiceIsOneInstanceThatKeepsItsSnapshot) {
    Machine& machine = Machine::installed();
    machine.kernel.setMonotonicSeconds(10);
    machine.networkInterfaces.answers.interfaceCounters.set({{{1, {100, 10, false}}}});
    NetworkService& service = NetworkService::shared();
    EXPECT_EQ(&service, &NetworkService::shared());
    EXPECT_FALSE(service.readNetworkInfo().hasSample);

    machine.kernel.setMonotonicSeconds(14);
    machine.networkInterfaces.answers.interfaceCounters.set({{{1, {900, 50, false}}}});
    const NetworkInfo info = NetworkService::shared().readNetworkInfo();
    EXPECT_DOUBLE_EQ(info.downloadBytesPerSecond, 200);
    EXPECT_DOUBLE_EQ(info.uploadBytesPerSecond, 10);
}

TEST(SharedServices, TheProcessServiceIsOneInstanceOnTheInstalledPlatform) {
    Machine::installed().processTable.processes = {
        {.identifier = 7, .command = "big", .task{{.residentSize = 5'000'000}}}};
    ProcessService& service = ProcessService::shared();
    EXPECT_EQ(&service, &ProcessService::shared());
    ASSERT_EQ(service.readTopProcesses(3).memory.size(), 1U);
}

TEST(SharedServices, TheGPUServiceIsMadeOnFirstUse) {
    Machine::installed().accelerators.answers.matchingServices.set(
        {.services = {{{"model", std::string("Graphics")},
                       {"PerformanceStatistics", platform::PropertyDictionary{}}}}});
    GPUService& service = GPUService::shared();
    EXPECT_EQ(&service, &GPUService::shared());
    EXPECT_EQ(service.readGPUInfo().modelName, "Graphics");
}

TEST(SharedServices, TheBatteryServiceIsOneInstance) {
    Machine::installed();
    const auto service = BatteryService::shared();
    ASSERT_NE(service, nullptr);
    EXPECT_EQ(service, BatteryService::shared());
}

TEST(SharedServices, TheBatteryServiceRunsOnTheInstalledPlatform) {
    Machine& machine = Machine::installed();
    machine.kernel.setWallClockSeconds(5000);
    machine.powerSources.answers.descriptions.set(std::vector{
        platform::PowerSourceDescription{.type = "InternalBattery", .currentCapacity = 63}});
    machine.powerSources.answers.cycleCount.set(412);
    machine.powerSources.answers.identity.set("one");
    machine.powerSources.answers.readHealth.set(HealthReading{.health = 87, .condition = "Fair"});

    const BatteryInfo quick = BatteryService::shared()->currentBatteryInfo(false);
    EXPECT_EQ(quick.percentage, 63);
    EXPECT_EQ(quick.cycleCount, 412);
    EXPECT_EQ(BatteryService::shared()->batteryInfoWithHealth(false).health, 87);
    EXPECT_EQ(machine.store.integer("battery.exactHealth"), 87);
    EXPECT_EQ(machine.store.text("battery.identity"), "one");
    EXPECT_EQ(machine.store.date("battery.lastExactFetch"), platform::Date{5000});
}

TEST(SharedServices, TheBatteryServiceWaitsForNoQuestionToADriverThatHangs) {
    Machine& machine = Machine::installed();
    machine.powerSources.answers.descriptions.set(std::vector{
        platform::PowerSourceDescription{.type = "InternalBattery", .currentCapacity = 63}});
    ASSERT_TRUE(BatteryService::shared()->currentBatteryInfo(true).hasBattery);
    machine.powerSources.clearCalls();
    machine.workers.hang();
    // The last reading stands, and only workers ask.
    EXPECT_EQ(BatteryService::shared()->currentBatteryInfo(false).percentage, 63);
    EXPECT_EQ(BatteryService::shared()->batteryInfoWithHealth(true).percentage, 63);
    EXPECT_THAT(machine.powerSources.calls(), testing::IsEmpty());
    machine.workers.comeBack();
    EXPECT_THAT(machine.powerSources.calls(), testing::Contains("descriptions"));
}

TEST(SharedServices, TheBatteryServiceWaitsAsLongAsEachSourceMayTake) {
    Machine& machine = Machine::installed();
    machine.powerSources.answers.descriptions.set(std::vector{
        platform::PowerSourceDescription{.type = "InternalBattery", .currentCapacity = 63}});
    machine.workers.waits.clear();
    BatteryService::shared()->currentBatteryInfo(true);
    // What it does now, and which one it is.
    EXPECT_THAT(machine.workers.waits, testing::ElementsAre(1, 1));
    machine.workers.waits.clear();
    BatteryService::shared()->batteryInfoWithHealth(true);
    EXPECT_THAT(machine.workers.waits, testing::ElementsAre(machine.powerSources.healthTakes));
}

TEST(SharedServices, AHealthThatDoesNotAnswerIsAFailedAttempt) {
    Machine& machine = Machine::installed();
    machine.powerSources.answers.descriptions.set(std::vector{
        platform::PowerSourceDescription{.type = "InternalBattery", .currentCapacity = 63}});
    machine.powerSources.answers.readHealth.set(HealthReading{.health = 87, .condition = "Fair"});
    BatteryService service;
    service.currentBatteryInfo(true);
    EXPECT_EQ(service.batteryInfoWithHealth(true).health, 87);
    EXPECT_EQ(machine.store.boolean("battery.lastAttemptFailed"), false);
    machine.workers.hang();
    EXPECT_EQ(service.batteryInfoWithHealth(true).health, 87);
    EXPECT_EQ(machine.store.boolean("battery.lastAttemptFailed"), true);
    machine.workers.comeBack();
    service.batteryInfoWithHealth(true);
    EXPECT_EQ(machine.store.boolean("battery.lastAttemptFailed"), false);
}

TEST(SharedServices, TheBatteryServicePausesOnTheMonotonicClock) {
    Machine& machine = Machine::installed();
    machine.powerSources.answers.descriptions.set(std::vector<platform::PowerSourceDescription>{});
    machine.kernel.setMonotonicSeconds(1000);
    BatteryService service;
    for (int call = 0; call < 3; ++call) {
        service.currentBatteryInfo(false);
    }
    machine.powerSources.clearCalls();
    service.currentBatteryInfo(false);
    EXPECT_THAT(machine.powerSources.calls(), testing::IsEmpty());
    machine.kernel.setMonotonicSeconds(1300);
    service.currentBatteryInfo(false);
    EXPECT_THAT(machine.powerSources.calls(), testing::ElementsAre("descriptions"));
}

TEST(SharedServices, ThreadsThatComeTogetherFindTheSameInstances) {
    installedKernel();
    constexpr std::size_t kThreads = 4;
    std::latch start(kThreads);
    std::vector<const void*> found(5 * kThreads);
    {
        std::vector<platform::testing::JoinedThread> threads;
        for (std::size_t i = 0; i < kThreads; ++i) {
            threads.emplace_back([&, i] {
                start.arrive_and_wait();
                found[5 * i] = &CPUService::shared();
                found[5 * i + 1] = &MemoryService::shared();
                found[5 * i + 2] = BatteryService::shared().get();
                found[5 * i + 3] = &NetworkService::shared();
                found[5 * i + 4] = &ProcessService::shared();
            });
        }
    }
    EXPECT_EQ(std::set(found.begin(), found.end()).size(), 5U);
}

}  // namespace
}  // namespace tarnwick
