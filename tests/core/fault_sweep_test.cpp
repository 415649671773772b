// SPDX-License-Identifier: MIT
// Every question to the machine fails once, alone, at every moment: only its own figures change,
// and they come back.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "core/stats_manager.h"
#include "platform/testing/manual_dispatch.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/scripted_accelerators.h"
#include "platform/testing/scripted_kernel.h"
#include "platform/testing/scripted_login_service.h"
#include "platform/testing/scripted_network_interfaces.h"
#include "platform/testing/scripted_power_sources.h"
#include "platform/testing/scripted_process_table.h"
#include "platform/testing/scripted_volumes.h"
#include "services/battery_service.h"
#include "services/cpu_service.h"
#include "services/gpu_service.h"
#include "services/memory_service.h"
#include "services/network_service.h"
#include "services/power_source_reader.h"
#include "services/process_service.h"
#include "services/storage_service.h"
#include "services/system_uptime.h"

namespace tarnwick {
namespace {

using namespace platform::testing;

constexpr int kRounds = 6;

template <class Number>
std::string number(Number value) {
    return std::to_string(std::llround(static_cast<double>(value)));
}

/// What is published after each round, by what it is about.
using Rounds = std::vector<std::map<std::string, std::string>>;

/// A whole machine whose figures move by the same amounts in each round.
class SweptMachine {
 public:
    SweptMachine() {
        kernel.answers.logicalCPUCount.set(2);
        kernel.answers.memorySize.set(std::uint64_t{4096} * 1000);
        kernel.answers.bootTime.set(platform::TimeValue{.seconds = 1000});
        kernel.setWallClockSeconds(5000);
        answerAsUsual();
        table.own = 1;
        network.answers.interfaceCounters.compute([this] {
            return platform::InterfaceTable{{2, {.received = 1000 * moment, .sent = 10 * moment}}};
        });
        volumes.answers.resourceValues.set(platform::VolumeResourceValues{
            .name = "Disk", .totalCapacity = 100, .availableCapacity = 25});
        accelerators.answers.matchingServices.set(
            {.services = {
                 {{"PerformanceStatistics",
                   platform::PropertyDictionary{{"Device Utilization %", std::int64_t{40}}}},
                  {"model", std::string("Card")}}}});
        power.answers.descriptions.set(
            std::vector{platform::PowerSourceDescription{.type = "InternalBattery",
                                                         .currentCapacity = 80,
                                                         .isCharging = false,
                                                         .powerSourceState = "Battery Power",
                                                         .timeToEmpty = 90}});
        power.answers.cycleCount.set(12);
    }

    /// Refreshes everything in each round; `before` may change the answers of the round.
    Rounds run(const std::function<void(SweptMachine&, int round)>& before) {
        StatsManager manager(&settings, battery, 30, 120,
                             StatsManagerEnvironment{dispatch, sources(),
                                                     [this] { return kernel.wallClockSeconds(); },
                                                     platform::Logger()});
        manager.popoverDidAppear();
        Rounds published;
        for (int round = 1; round <= kRounds; ++round) {
            ++moment;
            kernel.advance(10);
            answerAsUsual();
            before(*this, round);
            manager.refreshNow();
            dispatch.runMain();
            published.push_back(picture(manager));
        }
        return published;
    }

    ScriptedKernel kernel;
    ScriptedVolumes volumes;
    ScriptedNetworkInterfaces network;
    ScriptedAccelerators accelerators;
    ScriptedPowerSources power;
    ScriptedProcessTable table;
    std::int64_t heat = 1;
    std::uint64_t moment = 0;

    void answerAsUsual() {
        heat = 1;
        volumes.answers.attributesOfFileSystemForPath.set(
            platform::FileSystemAttributes{.size = 100, .freeSize = 50});
        power.answers.readHealth.set(platform::HealthReading{.health = 91, .condition = "Normal"});
        const auto ticks = static_cast<std::uint32_t>(100 * moment);
        kernel.answers.hostProcessorInfo.set(
            processorTicks({{ticks, ticks, 2 * ticks, 0}, {ticks, ticks, 2 * ticks, 0}}));
        kernel.answers.hostStatistics64.set({.result = 0,
                                             .statistics = {.free_count = 400,
                                                            .wire_count = 100,
                                                            .compressor_page_count = 50,
                                                            .external_page_count = 150,
                                                            .internal_page_count = 300}});
        kernel.answers.swapUsage.set(
            platform::SwapUsage{.total = 1000, .available = 600, .used = 400});
        table.processes = {
            {.identifier = 7,
             .command = "busy",
             .task = {{.residentSize = 5'000'000, .totalUser = 1'000'000'000 * moment}}}};
    }

 private:
    MetricSources sources() {
        return {.readCPUInfo = [this] { return cpu.readCPUInfo(); },
                .readGPUInfo = [this] { return gpu.readGPUInfo(); },
                .readMemoryInfo = [this] { return memory.readMemoryInfo(); },
                .readNetworkInfo = [this] { return traffic.readNetworkInfo(); },
                .readTopProcesses = [this](int limit) { return processes.readTopProcesses(limit); },
                .pruneStaleProcesses = [this] { processes.pruneStaleProcesses(); },
                .releaseProcessCaches = [this] { processes.releaseCaches(); },
                .readStorageInfo = [this] { return storage.readStorageInfo(); },
                .readThermalState = [this] { return heat; },
                .readUptime = [this] { return readUptime(kernel); }};
    }

    static std::map<std::string, std::string> picture(StatsManager& manager) {
        const CPUInfo& cpu = manager.cpuInfo.get();
        const GPUInfo& gpu = manager.gpuInfo.get();
        const MemoryInfo& memory = manager.memoryInfo.get();
        const BatteryInfo& battery = manager.batteryInfo.get();
        const NetworkInfo& network = manager.networkInfo.get();
        const auto& storage = manager.storageInfo.get();
        std::string rows;
        for (const AppProcessInfo& row : manager.topCPUProcesses.get()) {
            rows += row.name + ' ' + number(row.cpuUsage) + ' ' + number(row.memoryUsage) + '\n';
        }
        return {
            {"cpu", number(cpu.usagePercentage) + " of " + std::to_string(cpu.coreCount)},
            {"gpu", gpu.isAvailable ? gpu.modelName + ' ' + number(gpu.usagePercentage) : "none"},
            {"memory", number(memory.used) + " of " + number(memory.total)},
            {"swap", number(memory.swapUsed)},
            {"network", network.hasSample ? number(network.downloadBytesPerSecond) : "none"},
            {"storage", storage.empty()
                            ? "none"
                            : storage[0].name + ' ' + std::to_string(storage[0].usedSpace) +
                                  " of " + std::to_string(storage[0].totalSpace)},
            {"battery", battery.hasBattery ? std::to_string(battery.percentage) : "none"},
            {"health", battery.health ? std::to_string(*battery.health) : "none"},
            {"cycles", battery.cycleCount ? std::to_string(*battery.cycleCount) : "none"},
            {"processes", rows},
            {"uptime", number(manager.systemInfo.get().uptime)},
            {"heat", std::to_string(manager.thermalState.get())}};
    }

    MemoryUserDefaults store;
    ScriptedLoginService loginService;
    UserSettings settings{store, loginService};
    ManualDispatch dispatch;
    CPUService cpu{kernel};
    GPUService gpu{accelerators};
    MemoryService memory{kernel};
    NetworkService traffic{network, kernel, platform::Logger()};
    ProcessService processes{table, kernel};
    StorageService storage{volumes};
    std::shared_ptr<BatteryService> battery = std::make_shared<BatteryService>(
        store, [this] { return power.readHealth(); }, [this] { return readPowerSources(power); },
        [this] { return platform::Date{kernel.wallClockSeconds()}; },
        [this] { return kernel.monotonicSeconds(); }, [this] { return power.identity(); });
};

/// In each round from the beginning on, every answer is the usual one unless a fault says
/// otherwise.
struct Fault {
    const char* name;
    /// Makes the answers of this round fail.
    std::function<void(SweptMachine&)> fail;
    /// The figures that it concerns, as they are when it has failed in every round.
    std::map<std::string, std::string> always;
};

void PrintTo(const Fault& fault, std::ostream* out) {
    *out << fault.name;
}

const std::vector<Fault> kFaults = {
    {"ProcessorCount",
     [](SweptMachine& machine) { machine.kernel.answers.logicalCPUCount.queue(std::nullopt); },
     {{"cpu", "50 of 0"}}},
    {"ProcessorTicks",
     [](SweptMachine& machine) { machine.kernel.answers.hostProcessorInfo.queue({.result = 5}); },
     {{"cpu", "0 of 2"}}},
    {"MemorySize",
     [](SweptMachine& machine) { machine.kernel.answers.memorySize.queue(std::nullopt); },
     {{"memory", "0 of 0"}, {"swap", "400"}}},
    {"Pages",
     [](SweptMachine& machine) { machine.kernel.answers.hostStatistics64.queue({.result = 5}); },
     {{"memory", "0 of 4096000"}, {"swap", "0"}}},
    {"Swap",
     [](SweptMachine& machine) { machine.kernel.answers.swapUsage.queue(std::nullopt); },
     {{"swap", "0"}}},
    {"BootTime",
     [](SweptMachine& machine) { machine.kernel.answers.bootTime.queue(std::nullopt); },
     {{"uptime", "0"}}},
    {"Interfaces",
     [](SweptMachine& machine) { machine.network.answers.interfaceCounters.queue(std::nullopt); },
     {{"network", "none"}}},
    {"VolumeValues",
     [](SweptMachine& machine) {
         machine.volumes.answers.resourceValues.queue(platform::VolumeError{"broken"});
     },
     {{"storage", "Macintosh HD 50 of 100"}}},
    {"VolumeAttributes",
     [](SweptMachine& machine) {
         machine.volumes.answers.attributesOfFileSystemForPath.set(std::nullopt);
     },
     {}},
    {"Volume",
     [](SweptMachine& machine) {
         machine.volumes.answers.resourceValues.queue(platform::VolumeError{"broken"});
         machine.volumes.answers.attributesOfFileSystemForPath.set(std::nullopt);
     },
     {{"storage", "Macintosh HD 0 of 0"}}},
    {"Accelerators",
     [](SweptMachine& machine) {
         machine.accelerators.answers.matchingServices.queue({.result = 5});
     },
     {{"gpu", "none"}}},
    {"PowerSources",
     [](SweptMachine& machine) {
         for (int call = 0; call < 3; ++call) {
             machine.power.answers.descriptions.queue(std::nullopt);
         }
     },
     {{"battery", "none"}, {"health", "none"}, {"cycles", "none"}}},
    {"Cycles",
     [](SweptMachine& machine) {
         for (int call = 0; call < 3; ++call) {
             machine.power.answers.cycleCount.queue(std::nullopt);
         }
     },
     {{"cycles", "none"}}},
    {"Health",
     [](SweptMachine& machine) { machine.power.answers.readHealth.set(std::nullopt); },
     {{"health", "none"}}},
    {"Identity", [](SweptMachine& machine) { machine.power.answers.identity.queue(""); }, {}},
    {"ProcessList",
     [](SweptMachine& machine) {
         machine.table.listing.queue(platform::ProcessListing::noList);
         machine.table.listing.queue(platform::ProcessListing::noList);
     },
     {{"processes", ""}}},
    {"ProcessBuffer",
     [](SweptMachine& machine) {
         machine.table.listing.queue(platform::ProcessListing::noBufferSize);
         machine.table.listing.queue(platform::ProcessListing::noBufferSize);
     },
     {{"processes", ""}}},
    {"OneProcess",
     [](SweptMachine& machine) { machine.table.processes[0].task.reset(); },
     {{"processes", ""}}},
    {"Heat",
     [](SweptMachine& machine) { machine.heat = platform::kUnknownThermalState; },
     {{"heat", std::to_string(platform::kUnknownThermalState)}}},
};

class FaultSweep : public ::testing::TestWithParam<Fault> {
 protected:
    static Rounds whileFailing(const std::function<bool(int round)>& fails) {
        return SweptMachine().run([&](SweptMachine& machine, int round) {
            if (fails(round)) {
                GetParam().fail(machine);
            }
        });
    }
    /// What the fault does not concern is as ever.
    static void expectOthers(const Rounds& rounds) {
        const Rounds usual = SweptMachine().run([](SweptMachine&, int) {});
        for (std::size_t round = 0; round < rounds.size(); ++round) {
            for (const auto& [name, value] : usual[round]) {
                if (!GetParam().always.contains(name)) {
                    EXPECT_EQ(rounds[round].at(name), value) << name << " in round " << round + 1;
                }
            }
        }
    }
};

TEST_P(FaultSweep, AtTheFirstAndAtTheThirdQuestionItIsOverSoon) {
    for (const int failing : {1, 3}) {
        const Rounds rounds = whileFailing([failing](int round) { return round == failing; });
        expectOthers(rounds);
        EXPECT_EQ(rounds.back(), SweptMachine().run([](SweptMachine&, int) {}).back());
    }
}

TEST_P(FaultSweep, AtEveryQuestionOnlyItsOwnFiguresAreMissing) {
    const Rounds rounds = whileFailing([](int) { return true; });
    expectOthers(rounds);
    for (const auto& [name, value] : GetParam().always) {
        EXPECT_EQ(rounds.back().at(name), value) << name;
    }
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultSweep, ::testing::ValuesIn(kFaults),
                         [](const auto& fault) { return std::string(fault.param.name); });

}  // namespace
}  // namespace tarnwick
