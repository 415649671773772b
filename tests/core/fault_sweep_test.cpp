// SPDX-License-Identifier: MIT
// Every question to the machine fails once, alone, at every moment: only its own figures change,
// and they come back.
#include <cmath>
#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "core/stats_manager.h"
#include "tests/core/machine_faults.h"
#include "tests/core/scripted_machine.h"

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

std::map<std::string, std::string> picture(StatsManager& manager) {
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
        {"storage", storage.empty() ? "none"
                                    : storage[0].name + ' ' + std::to_string(storage[0].usedSpace) +
                                          " of " + std::to_string(storage[0].totalSpace)},
        {"battery", battery.hasBattery ? std::to_string(battery.percentage) : "none"},
        {"health", battery.health ? std::to_string(*battery.health) : "none"},
        {"cycles", battery.cycleCount ? std::to_string(*battery.cycleCount) : "none"},
        {"processes", rows},
        {"uptime", number(manager.systemInfo.get().uptime)},
        {"heat", std::to_string(manager.thermalState.get())}};
}

/// Refreshes everything in each round; `before` may change the answers of the round.
Rounds run(const std::function<void(ScriptedMachine&, int round)>& before) {
    ScriptedMachine machine;
    StatsManager manager(
        &machine.settings, machine.battery, 30, 120,
        StatsManagerEnvironment{machine.dispatch, machine.sources(),
                                [&machine] { return machine.kernel.wallClockSeconds(); },
                                platform::Logger()});
    manager.popoverDidAppear();
    Rounds published;
    for (int round = 1; round <= kRounds; ++round) {
        machine.turn(10);
        before(machine, round);
        manager.refreshNow();
        machine.dispatch.runMain();
        published.push_back(picture(manager));
    }
    return published;
}

class FaultSweep : public ::testing::TestWithParam<Fault> {
 protected:
    static Rounds whileFailing(const std::function<bool(int round)>& fails) {
        return run([&](ScriptedMachine& machine, int round) {
            if (fails(round)) {
                GetParam().fail(machine);
            }
        });
    }
    /// What the fault does not concern is as ever.
    static void expectOthers(const Rounds& rounds) {
        const Rounds usual = run([](ScriptedMachine&, int) {});
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
        EXPECT_EQ(rounds.back(), run([](ScriptedMachine&, int) {}).back());
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
