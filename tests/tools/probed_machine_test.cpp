// SPDX-License-Identifier: MIT
// On a machine of no system in particular.
#include "tools/probed_machine.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

#include "platform/testing/scripted_accelerators.h"
#include "platform/testing/scripted_kernel.h"
#include "platform/testing/scripted_network_interfaces.h"
#include "platform/testing/scripted_power_sources.h"
#include "platform/testing/scripted_process_table.h"
#include "platform/testing/scripted_volumes.h"
#include "platform/timed_source.h"

namespace tarnwick::probe {
namespace {

using platform::PropertyDictionary;
using testing::Contains;

/// A profiler that takes its time.
class SlowHealth final : public platform::BatteryHealth {
 public:
    static constexpr double kSeconds = 4;

    int readings = 0;

    std::optional<platform::HealthReading> readHealth() override {
        ++readings;
        return platform::HealthReading{.health = 90};
    }
    double longestReading() const override { return kSeconds; }
};

class SteadyProcessInfo final : public platform::ProcessInfo {
 public:
    std::int64_t activeProcessorCount() override { return 1; }
    std::int64_t thermalState() override { return 0; }
};

/// Works at once, and notes how long it would have been waited for.
class PatientWorkers final : public platform::Workers {
 public:
    std::vector<double> waits{};
    /// While true, no thread can be started.
    bool refuses = false;

    Outcome run(std::function<void()> work, double seconds) override {
        waits.push_back(seconds);
        if (refuses) {
            return Outcome::refused;
        }
        work();
        return Outcome::ended;
    }
};

/// Lives as long as the test program, as a probed machine does.
struct ScriptedMachine {
    platform::testing::ScriptedKernel kernel;
    platform::testing::ScriptedVolumes volumes;
    platform::testing::ScriptedNetworkInterfaces networkInterfaces;
    platform::testing::ScriptedAccelerators accelerators;
    SteadyProcessInfo processInfo;
    platform::testing::ScriptedPowerSources powerSources;
    SlowHealth batteryHealth;
    platform::testing::ScriptedProcessTable processTable;
    PatientWorkers workers;
    int ends = 0;

    ScriptedMachine() {
        powerSources.answers.descriptions.set(std::vector{
            platform::PowerSourceDescription{.type = "InternalBattery", .currentCapacity = 50}});
    }

    Sources sources() {
        return {.machine = {.kernel = &kernel,
                            .volumes = &volumes,
                            .networkInterfaces = &networkInterfaces,
                            .accelerators = &accelerators,
                            .processInfo = &processInfo,
                            .powerSources = &powerSources,
                            .batteryHealth = &batteryHealth,
                            .processTable = &processTable,
                            .workers = &workers},
                .end = [this] { ++ends; }};
    }
};

TEST(ProbedMachine, NumbersCardsThatHaveNoName) {
    static auto& scripted = *new ScriptedMachine;
    scripted.accelerators.answers.matchingServices.set(
        {.services = {PropertyDictionary{{"model", std::string("A")}},
                      PropertyDictionary{{"card", std::string("card7")}}, PropertyDictionary{}}});
    static auto& machine = *new ProbedMachine(scripted.sources(), Options{});
    std::vector<std::string> names;
    for (const GraphicsCardSample& card : machine.read().gpus) {
        names.push_back(card.id);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"gpu0", "card7", "gpu2"}));
}

TEST(ProbedMachine, WaitsForTheHealthAsLongAsItsSourceAsks) {
    static auto& scripted = *new ScriptedMachine;
    static auto& machine = *new ProbedMachine(scripted.sources(), Options{});
    machine.read();
    EXPECT_THAT(scripted.workers.waits, Contains(SlowHealth::kSeconds));
}

TEST(ProbedMachine, AsksForTheHealthAgainSoonAfterAnAttemptWithoutAnAnswer) {
    static auto& scripted = *new ScriptedMachine;
    static auto& machine = *new ProbedMachine(scripted.sources(), Options{});
    machine.read();
    scripted.kernel.advance(86'400);
    scripted.workers.refuses = true;
    machine.read();
    scripted.workers.refuses = false;
    EXPECT_EQ(scripted.batteryHealth.readings, 1);
    scripted.kernel.advance(300);
    machine.read();
    EXPECT_EQ(scripted.batteryHealth.readings, 2);
}

TEST(ProbedMachine, AsksAWorkerForTheNetworkOnlyWhereItMayHang) {
    static auto& scripted = *new ScriptedMachine;
    static auto& machine = *new ProbedMachine(scripted.sources(), Options{});
    const auto waitsForSensors = [] {
        const auto waits = std::exchange(scripted.workers.waits, {});
        return std::ranges::count(waits, platform::kSensorPatience);
    };
    machine.read();
    const auto before = waitsForSensors();
    scripted.networkInterfaces.hangs = true;
    machine.read();
    EXPECT_EQ(waitsForSensors(), before + 1);
}

TEST(ProbedMachine, EndsItsSources) {
    static auto& scripted = *new ScriptedMachine;
    static auto& machine = *new ProbedMachine(scripted.sources(), Options{});
    machine.read();
    EXPECT_EQ(scripted.ends, 0);
    machine.end();
    EXPECT_EQ(scripted.ends, 1);
}

}  // namespace
}  // namespace tarnwick::probe
