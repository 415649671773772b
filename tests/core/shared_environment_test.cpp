// SPDX-License-Identifier: MIT
// The process-wide samplers and the manager that runs on them.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "core/metric_sources.h"
#include "core/stats_manager.h"
#include "platform/platform.h"
#include "platform/testing/manual_dispatch.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/scripted_accelerators.h"
#include "platform/testing/scripted_kernel.h"
#include "platform/testing/scripted_login_service.h"
#include "platform/testing/scripted_network_interfaces.h"
#include "platform/testing/scripted_power_sources.h"
#include "platform/testing/scripted_process_table.h"
#include "platform/testing/scripted_volumes.h"
#include "platform/testing/scripted_workers.h"
#include "services/battery_service.h"

namespace tarnwick {
namespace {

class FairMachine final : public platform::ProcessInfo {
 public:
    std::int64_t activeProcessorCount() override { return 1; }
    std::int64_t thermalState() override { return 1; }
};

/// The machine under the process-wide instances, which keep it for good.
struct Machine {
    platform::testing::ScriptedKernel kernel;
    platform::testing::ScriptedVolumes volumes;
    platform::testing::ScriptedNetworkInterfaces networkInterfaces;
    platform::testing::ScriptedPowerSources powerSources;
    platform::testing::ScriptedAccelerators accelerators;
    platform::testing::MemoryUserDefaults store;
    platform::testing::ScriptedLoginService loginService;
    platform::testing::ManualDispatch dispatch;
    platform::testing::ScriptedProcessTable processTable;
    FairMachine processInfo;
    platform::testing::ScriptedWorkers workers;

    static Machine& installed() {
        static Machine& machine = *[] {
            auto* made = new Machine;
            platform::Platform platform;
            platform.kernel = &made->kernel;
            platform.volumes = &made->volumes;
            platform.networkInterfaces = &made->networkInterfaces;
            platform.powerSources = &made->powerSources;
            platform.batteryHealth = &made->powerSources;
            platform.accelerators = &made->accelerators;
            platform.userDefaults = &made->store;
            platform.loginService = &made->loginService;
            platform.dispatch = &made->dispatch;
            platform.processTable = &made->processTable;
            platform.processInfo = &made->processInfo;
            platform.workers = &made->workers;
            platform::install(platform);
            made->kernel.answers.logicalCPUCount.set(8);
            made->kernel.answers.memorySize.set(4096);
            made->kernel.answers.bootTime.set(platform::TimeValue{.seconds = 400});
            made->networkInterfaces.answers.interfaceCounters.set({{{1, {600, 700, false}}}});
            made->kernel.setWallClockSeconds(1000);
            made->accelerators.answers.matchingServices.set(
                {.services = {{{"PerformanceStatistics",
                                platform::PropertyDictionary{{"Device Utilization %", 41.5}}}}}});
            made->volumes.answers.attributesOfFileSystemForPath.set(
                platform::FileSystemAttributes{.size = 500, .freeSize = 200});
            return made;
        }();
        return machine;
    }
};

TEST(MetricSources, ReadTheCurrentPlatform) {
    Machine::installed();
    const MetricSources sources = MetricSources::shared();
    EXPECT_EQ(sources.readCPUInfo().coreCount, 8);
    EXPECT_EQ(sources.readGPUInfo().usagePercentage, 41.5);
    EXPECT_EQ(sources.readMemoryInfo().total, 4096u);
    EXPECT_EQ(sources.readNetworkInfo().totalReceivedBytes, 600u);
    EXPECT_EQ(sources.readStorageInfo().value().totalSpace, 500);
    EXPECT_EQ(sources.readThermalState(), 1);
    EXPECT_EQ(sources.readUptime(), 600);
}

TEST(MetricSources, AreAbsentOrUnknownWhereNoAnswerComes) {
    Machine& machine = Machine::installed();
    machine.workers.hangs = true;
    const MetricSources sources = MetricSources::shared();
    EXPECT_FALSE(sources.readStorageInfo());
    EXPECT_EQ(sources.readThermalState(), platform::kUnknownThermalState);
    EXPECT_EQ(machine.workers.waits, (std::vector<double>{1, 0.25}));
    EXPECT_EQ(sources.readUptime(), 600);
    machine.workers.hangs = false;
    machine.workers.comeBack();
    EXPECT_EQ(sources.readStorageInfo().value().totalSpace, 500);
    EXPECT_EQ(sources.readThermalState(), 1);
}

TEST(MetricSources, AskAWorkerForTheNetworkOnlyWhereItMayHang) {
    Machine& machine = Machine::installed();
    machine.workers.waits.clear();
    machine.workers.hangs = true;
    const MetricSources sources = MetricSources::shared();
    EXPECT_EQ(sources.readNetworkInfo().totalReceivedBytes, 600u);
    EXPECT_TRUE(machine.workers.waits.empty());

    machine.networkInterfaces.hangs = true;
    machine.workers.hangs = false;
    EXPECT_EQ(sources.readNetworkInfo().totalReceivedBytes, 600u);
    machine.workers.hangs = true;
    // The last figures stand for three refreshes.
    for (int refresh = 0; refresh < 3; ++refresh) {
        EXPECT_EQ(sources.readNetworkInfo().totalReceivedBytes, 600u);
    }
    EXPECT_EQ(sources.readNetworkInfo().totalReceivedBytes, 0u);
    EXPECT_EQ(machine.workers.waits, (std::vector<double>{0.25}));

    machine.workers.hangs = false;
    machine.workers.comeBack();
    EXPECT_EQ(sources.readNetworkInfo().totalReceivedBytes, 600u);
    machine.networkInterfaces.hangs = false;
}

TEST(MetricSources, KeepWhatRatesAreCountedFrom) {
    Machine& machine = Machine::installed();
    const auto processors = [&machine](const std::array<std::uint32_t, 4>& ticks) {
        machine.kernel.answers.hostProcessorInfo.set(platform::testing::processorTicks({ticks}));
    };
    processors({10, 0, 10, 0});
    machine.kernel.setMonotonicSeconds(20);
    MetricSources::shared().readCPUInfo();
    MetricSources::shared().readNetworkInfo();

    processors({35, 0, 85, 0});
    machine.kernel.setMonotonicSeconds(24);
    machine.networkInterfaces.answers.interfaceCounters.set({{{1, {1000, 1500, false}}}});
    EXPECT_DOUBLE_EQ(MetricSources::shared().readCPUInfo().usagePercentage, 25);
    const NetworkInfo network = MetricSources::shared().readNetworkInfo();
    EXPECT_TRUE(network.hasSample);
    EXPECT_DOUBLE_EQ(network.downloadBytesPerSecond, 100);
    EXPECT_DOUBLE_EQ(network.uploadBytesPerSecond, 200);
    machine.networkInterfaces.answers.interfaceCounters.set({{{1, {600, 700, false}}}});
}

TEST(MetricSources, ListTheProcessesOfTheCurrentPlatform) {
    auto& table = Machine::installed().processTable;
    table.processes = {{.identifier = 7, .command = "big", .task{{.residentSize = 2'000'000}}},
                       {.identifier = 8, .command = "small", .task{{.residentSize = 1'000'000}}}};
    const MetricSources sources = MetricSources::shared();
    Machine::installed().kernel.setMonotonicSeconds(0);
    const TopProcessLists first = sources.readTopProcesses(1);
    ASSERT_EQ(first.memory.size(), 1u);
    EXPECT_EQ(first.memory[0].name, "big");

    // One second of processor time in ten seconds.
    table.processes[1].task->totalUser = 1'000'000'000;
    Machine::installed().kernel.setMonotonicSeconds(10);
    const TopProcessLists second = sources.readTopProcesses(1);
    ASSERT_EQ(second.cpu.size(), 1u);
    EXPECT_EQ(second.cpu[0].name, "small");
    EXPECT_DOUBLE_EQ(second.cpu[0].cpuUsage, 10);

    // Forgotten after a minute.
    Machine::installed().kernel.setMonotonicSeconds(70);
    sources.pruneStaleProcesses();
    table.processes[1].task->totalUser = 2'000'000'000;
    Machine::installed().kernel.setMonotonicSeconds(80);
    EXPECT_EQ(sources.readTopProcesses(1).cpu[0].cpuUsage, 0);

    table.clearCalls();
    sources.releaseProcessCaches();
    EXPECT_EQ(table.calls(), (std::vector<std::string>{"releaseCaches"}));
}

TEST(SharedStatsManager, RunsOnTheCurrentPlatformWithTheSharedSettings) {
    Machine& machine = Machine::installed();
    const StatsManager manager(nullptr, BatteryService::shared(), 30, 120);
    EXPECT_EQ(&manager.settings(), &UserSettings::shared());
    machine.dispatch.runMain();
    EXPECT_EQ(manager.cpuInfo->coreCount, 8);
    EXPECT_EQ(manager.gpuInfo->usagePercentage, 41.5);
    EXPECT_EQ(manager.memoryInfo->total, 4096u);
    EXPECT_EQ(manager.networkInfo->totalSentBytes, 700u);
    EXPECT_EQ(manager.storageInfo->at(0).usedSpace, 300);
    EXPECT_EQ(manager.systemInfo->uptime, 600);
    EXPECT_EQ(*manager.thermalState, 1);
    EXPECT_EQ(manager.cpuUsageHistory->at(0).timestamp, 1000);
    EXPECT_TRUE(*manager.batteryDetectionComplete);
}

TEST(SharedStatsManager, GoesOnBesideSourcesThatNeverAnswer) {
    Machine& machine = Machine::installed();
    StatsManager manager(nullptr, BatteryService::shared(), 30, 120);
    machine.dispatch.runMain();
    ASSERT_EQ(manager.storageInfo->size(), 1U);
    machine.workers.hangs = true;
    manager.popoverDidAppear();
    const std::size_t before = manager.cpuUsageHistory->size();
    for (int refresh = 1; refresh <= 100; ++refresh) {
        machine.kernel.setWallClockSeconds(1000 + refresh);
        manager.refreshNow();
        machine.dispatch.runMain();
        EXPECT_EQ(manager.storageInfo->size(), refresh <= 3 ? 1U : 0U) << refresh;
        EXPECT_EQ(manager.systemInfo->uptime, 600 + refresh);
        EXPECT_EQ(manager.memoryInfo->total, 4096U);
    }
    EXPECT_EQ(*manager.thermalState, platform::kUnknownThermalState);
    EXPECT_EQ(manager.cpuUsageHistory->size(), std::min(before + 100, StatsManager::kHistoryLimit));
    // The volume, the thermal sensors and the battery; its health is not asked for without it.
    EXPECT_EQ(machine.workers.hanging(), 3U);

    machine.workers.hangs = false;
    machine.workers.comeBack();
    manager.refreshNow();
    machine.dispatch.runMain();
    ASSERT_EQ(manager.storageInfo->size(), 1U);
    EXPECT_EQ(manager.storageInfo->at(0).totalSpace, 500);
    EXPECT_EQ(*manager.thermalState, 1);
    machine.kernel.setWallClockSeconds(1000);
}

TEST(SharedStatsManager, LogsNothingByDefault) {
    Machine::installed();
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    { const StatsManager manager(nullptr, BatteryService::shared(), 30, 120); }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace tarnwick
