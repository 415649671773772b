// SPDX-License-Identifier: MIT
// A machine whose every answer is scripted, with the real services that read it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/metric_sources.h"
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
#include "settings/user_settings.h"

namespace tarnwick::platform::testing {

/// Its figures move by the same amounts from one moment to the next. One thread.
class ScriptedMachine {
 public:
    ScriptedMachine() {
        kernel.answers.logicalCPUCount.set(2);
        kernel.answers.memorySize.set(std::uint64_t{4096} * 1000);
        kernel.answers.bootTime.set(TimeValue{.seconds = 1000});
        kernel.setWallClockSeconds(5000);
        answerAsUsual();
        table.own = 1;
        network.answers.interfaceCounters.compute([this] {
            return InterfaceTable{{2, {.received = 1000 * moment, .sent = 10 * moment}}};
        });
        volumes.answers.resourceValues.set(
            VolumeResourceValues{.name = "Disk", .totalCapacity = 100, .availableCapacity = 25});
        plugCard(true);
        plugBattery(true);
        power.answers.cycleCount.set(12);
    }

    /// The next moment, so many seconds later: all answers are the usual ones again.
    void turn(double seconds) {
        ++moment;
        kernel.advance(seconds);
        answerAsUsual();
    }

    /// A graphics card is there, or none.
    void plugCard(bool isThere) {
        MatchingServices cards;
        if (isThere) {
            cards.services = {{{"PerformanceStatistics",
                                PropertyDictionary{{"Device Utilization %", std::int64_t{40}}}},
                               {"model", std::string("Card")}}};
        }
        accelerators.answers.matchingServices.set(std::move(cards));
    }

    /// A battery is there, or none.
    void plugBattery(bool isThere) {
        std::vector<PowerSourceDescription> found;
        if (isThere) {
            found.push_back({.type = "InternalBattery",
                             .currentCapacity = 80,
                             .isCharging = false,
                             .powerSourceState = "Battery Power",
                             .timeToEmpty = 90});
        }
        power.answers.descriptions.set(std::move(found));
    }

    /// Forgets which questions were asked.
    void clearCalls() {
        kernel.clearCalls();
        volumes.clearCalls();
        network.clearCalls();
        accelerators.clearCalls();
        power.clearCalls();
        table.clearCalls();
        store.clearWrites();
        loginService.clearCalls();
    }

    /// What a stats manager reads here.
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

    ScriptedKernel kernel;
    ScriptedVolumes volumes;
    ScriptedNetworkInterfaces network;
    ScriptedAccelerators accelerators;
    ScriptedPowerSources power;
    ScriptedProcessTable table;
    std::int64_t heat = 1;
    std::uint64_t moment = 0;

    MemoryUserDefaults store;
    ScriptedLoginService loginService;
    UserSettings settings{store, loginService};
    ManualDispatch dispatch;
    std::shared_ptr<BatteryService> battery = std::make_shared<BatteryService>(
        store, [this] { return power.readHealth(); }, [this] { return readPowerSources(power); },
        [this] { return Date{kernel.wallClockSeconds()}; },
        [this] { return kernel.monotonicSeconds(); }, [this] { return power.identity(); });

 private:
    template <class... Operations>
    static void dropQueued(Operations&... operations) {
        (operations.dropQueued(), ...);
    }

    void answerAsUsual() {
        dropQueued(kernel.answers.logicalCPUCount, kernel.answers.memorySize,
                   kernel.answers.swapUsage, kernel.answers.hostProcessorInfo,
                   kernel.answers.hostStatistics64, kernel.answers.bootTime,
                   network.answers.interfaceCounters, volumes.answers.resourceValues,
                   accelerators.answers.matchingServices, power.answers.descriptions,
                   power.answers.cycleCount, power.answers.identity, table.listing);
        heat = 1;
        volumes.answers.attributesOfFileSystemForPath.set(
            FileSystemAttributes{.size = 100, .freeSize = 50});
        power.answers.readHealth.set(HealthReading{.health = 91, .condition = "Normal"});
        const auto ticks = static_cast<std::uint32_t>(100 * moment);
        kernel.answers.hostProcessorInfo.set(
            processorTicks({{ticks, ticks, 2 * ticks, 0}, {ticks, ticks, 2 * ticks, 0}}));
        kernel.answers.hostStatistics64.set({.result = 0,
                                             .statistics = {.free_count = 400,
                                                            .wire_count = 100,
                                                            .compressor_page_count = 50,
                                                            .external_page_count = 150,
                                                            .internal_page_count = 300}});
        kernel.answers.swapUsage.set(SwapUsage{.total = 1000, .available = 600, .used = 400});
        table.processes = {
            {.identifier = 7,
             .command = "busy",
             .task = {{.residentSize = 5'000'000, .totalUser = 1'000'000'000 * moment}}}};
    }

    CPUService cpu{kernel};
    GPUService gpu{accelerators};
    MemoryService memory{kernel};
    NetworkService traffic{network, kernel, Logger()};
    ProcessService processes{table, kernel};
    StorageService storage{volumes};
};

}  // namespace tarnwick::platform::testing
