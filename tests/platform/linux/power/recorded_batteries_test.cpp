// SPDX-License-Identifier: MIT
// The battery of each recorded machine that shows something of its own.
#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/power/linux_power_sources.h"
#include "services/power_source_reader.h"
#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using testing::MachineTree;
using testing::recordedMachine;

struct ExpectedBattery {
    std::string machine;
    std::int64_t percentage;
    bool isCharging;
    bool isPluggedIn;
    /// Minutes.
    std::int64_t timeRemaining;
    std::optional<std::int64_t> cycles;
    std::optional<std::int64_t> health;
    std::string condition;
};

class RecordedBattery : public ::testing::TestWithParam<ExpectedBattery> {};

TEST_P(RecordedBattery, IsReadAsItIs) {
    const ExpectedBattery& expected = GetParam();
    LinuxPowerSources sources(recordedMachine(expected.machine));
    EXPECT_EQ(sources.descriptions()->size(), 1U);
    const BatteryInfo info = readPowerSources(sources).value();
    EXPECT_TRUE(info.hasBattery);
    EXPECT_EQ(info.percentage, expected.percentage);
    EXPECT_EQ(info.isCharging, expected.isCharging);
    EXPECT_EQ(info.isPluggedIn, expected.isPluggedIn);
    EXPECT_EQ(info.timeRemaining, expected.timeRemaining);
    EXPECT_EQ(info.cycleCount, expected.cycles);
    EXPECT_EQ(info.healthCondition, expected.condition);
    EXPECT_EQ(sources.readHealth(), (HealthReading{.health = expected.health, .condition = {}}));
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(All, RecordedBattery, ::testing::ValuesIn(std::vector<ExpectedBattery>{
    {"laptop", 63, false, false, 223, 412, 87, ""},
    {"handheld", 80, true, true, 27, 156, 94, "Good"},
    {"two-batteries", 92, true, true, 19, 31, 91, ""},
    {"damaged", 0, false, false, 0, {}, {}, ""},
    {"batteries/charge-only", 53, false, false, 90, {}, 91, ""},
    {"batteries/dead-but-empty", 0, true, true, 346, 77, 97, ""},
    {"batteries/gauge", 57, false, false, 252, 203, 94, "Good"},
    {"batteries/limited", 80, false, true, 0, 58, 87, ""},
    {"batteries/pair", 57, false, false, 230, 388, 91, ""},
    {"batteries/state-of-health", 100, false, true, 0, 64, 91, "Good"},
    {"batteries/swapped-after", 88, false, false, 334, 3, 100, ""},
    {"batteries/swapped-before", 35, false, false, 96, 611, 72, ""},
    {"batteries/ten", 55, false, false, 132, 100, 80, "Overheat"},
    {"batteries/unknown-level", 0, false, true, 0, 96, 84, ""},
    {"batteries/without-design", 75, false, false, 300, 140, {}, ""},
}), [](const auto& parameter) {
    std::string name = parameter.param.machine;
    std::erase_if(name, [](char each) { return each == '-' || each == '/'; });
    return name;
});
// clang-format on

TEST(RecordedBatteries, AreMissingOnMachinesWithoutOne) {
    for (const std::string_view machine : {"workstation", "server", "container-host", "old-kernel",
                                           "virtual-machine", "no such machine"}) {
        LinuxPowerSources sources(recordedMachine(machine));
        EXPECT_EQ(sources.descriptions()->size(), 0U) << machine;
        EXPECT_EQ(sources.readHealth(), std::nullopt) << machine;
        EXPECT_EQ(sources.cycleCount(), std::nullopt) << machine;
        EXPECT_EQ(sources.identity(), "") << machine;
    }
}

TEST(RecordedBatteries, WithALimitAreChargedUpToIt) {
    const MachineTree tree("batteries/limited");
    const std::string pack = "sys/class/power_supply/BAT0/";
    tree.write(pack + "status", "Charging\n");
    tree.write(pack + "capacity", "50\n");
    tree.write(pack + "energy_now", "24750000\n");
    tree.write(pack + "power_now", "15000000\n");
    LinuxPowerSources sources(tree.root());
    EXPECT_EQ(readPowerSources(sources)->timeRemaining, 59);
    tree.remove(pack + "charge_control_end_threshold");
    EXPECT_EQ(readPowerSources(sources)->timeRemaining, 59);
    tree.write(pack + "charge_stop_threshold", "100\n");
    EXPECT_EQ(readPowerSources(sources)->timeRemaining, 99);
}

TEST(RecordedBatteries, AreToldApartByTheirSerialNumbers) {
    LinuxPowerSources before(recordedMachine("batteries/swapped-before"));
    LinuxPowerSources after(recordedMachine("batteries/swapped-after"));
    EXPECT_EQ(before.identity(),
              LinuxPowerSources(recordedMachine("batteries/swapped-before")).identity());
    EXPECT_NE(before.identity(), after.identity());
    EXPECT_EQ(before.identity().find("4711"), std::string::npos);
    EXPECT_NE(before.identity(), "");
}

TEST(RecordedBatteries, AreAnotherOneWithoutOneOfTheirPacks) {
    const MachineTree tree("batteries/ten");
    LinuxPowerSources sources(tree.root());
    const std::string whole = sources.identity();
    tree.write("sys/class/power_supply/BAT7/present", "0\n");
    EXPECT_NE(sources.identity(), whole);
    tree.write("sys/class/power_supply/BAT7/present", "1\n");
    EXPECT_EQ(sources.identity(), whole);
}

}  // namespace
}  // namespace tarnwick::platform
