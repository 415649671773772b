// SPDX-License-Identifier: MIT
#include "platform/linux/power/linux_power_sources.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <unistd.h>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/power/power_supply.h"
#include "services/power_source_reader.h"
#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using testing::MachineTree;

class Batteries : public ::testing::Test {
 protected:
    void set(const std::string& supply, std::string_view file, std::string_view text) {
        tree.write("sys/class/power_supply/" + supply + "/" + std::string(file),
                   std::string(text) + "\n");
    }
    void addBattery(const std::string& name, std::string_view level) {
        set(name, "type", "Battery");
        set(name, "present", "1");
        set(name, "status", "Discharging");
        set(name, "capacity", level);
        set(name, "energy_full", "45000000");
        set(name, "energy_full_design", "50000000");
        set(name, "cycle_count", level);
    }
    void addMains(const std::string& name, std::string_view online) {
        set(name, "type", "Mains");
        set(name, "online", online);
    }
    BatteryInfo read() { return readPowerSources(sources).value(); }

    const MachineTree tree;
    LinuxPowerSources sources{tree.root()};
};

TEST_F(Batteries, AreNoneWithoutTheClass) {
    EXPECT_EQ(sources.descriptions()->size(), 0U);
    tree.makeFolder("sys/class/power_supply");
    EXPECT_EQ(sources.descriptions()->size(), 0U);
}

TEST_F(Batteries, AreUnknownWhereTheClassCannotBeListed) {
    tree.write("sys/class/power_supply", "no folder\n");
    EXPECT_FALSE(sources.descriptions().has_value());
    EXPECT_FALSE(sources.readHealth().has_value());
    EXPECT_FALSE(sources.cycleCount().has_value());
}

TEST_F(Batteries, AreOne) {
    addBattery("BAT2", "20");
    addBattery("BAT0", "10");
    addBattery("BAT1", "15");
    const auto descriptions = sources.descriptions();
    ASSERT_EQ(descriptions->size(), 1U);
    EXPECT_EQ(descriptions->front().currentCapacity, 15);
    EXPECT_EQ(sources.cycleCount(), 20);
}

TEST_F(Batteries, AreTakenInTheOrderOfTheirNames) {
    addBattery("BAT10", "20");
    addBattery("BAT2", "10");
    set("BAT10", "health", "Cold");
    set("BAT2", "health", "Overheat");
    EXPECT_EQ(read().healthCondition, "Overheat");
}

TEST_F(Batteries, WhoseLevelIsUnknownLeaveItToTheOthers) {
    addBattery("BAT0", "-NaN");
    addBattery("BAT1", "15");
    EXPECT_EQ(read().percentage, 15);
}

TEST_F(Batteries, OfPeripheralsAreLeftOut) {
    addBattery("AAA", "5");
    set("AAA", "scope", "Device");
    addBattery("BAT0", "70");
    addMains("AC", "1");
    EXPECT_EQ(read().percentage, 70);
    EXPECT_EQ(sources.descriptions()->size(), 1U);
    tree.remove("sys/class/power_supply/BAT0");
    EXPECT_FALSE(read().hasBattery);
}

TEST_F(Batteries, AreOnExternalPowerWhenOneOfTheSuppliesIs) {
    addBattery("BAT0", "70");
    EXPECT_FALSE(read().isPluggedIn);
    addMains("AC", "0");
    addMains("USBC0", "0");
    EXPECT_FALSE(read().isPluggedIn);
    set("USBC0", "online", "1");
    EXPECT_TRUE(read().isPluggedIn);
    set("USBC0", "online", "0");
    set("AC", "online", "1");
    EXPECT_TRUE(read().isPluggedIn);
}

TEST_F(Batteries, AreNotOnExternalPowerBecauseOfAPeripheral) {
    addBattery("BAT0", "70");
    addMains("dock", "1");
    set("dock", "scope", "Device");
    EXPECT_FALSE(read().isPluggedIn);
}

TEST_F(Batteries, MayBePulledOutAndPutBack) {
    addBattery("BAT0", "70");
    addMains("AC", "1");
    EXPECT_TRUE(read().hasBattery);
    tree.remove("sys/class/power_supply/BAT0");
    EXPECT_FALSE(read().hasBattery);
    EXPECT_FALSE(sources.readHealth().has_value());
    addBattery("BAT0", "69");
    EXPECT_EQ(read().percentage, 69);
}

TEST_F(Batteries, MayLeaveTheirBayEmpty) {
    addBattery("BAT0", "70");
    addBattery("BAT1", "30");
    set("BAT0", "present", "0");
    EXPECT_EQ(read().percentage, 30);
    EXPECT_EQ(read().cycleCount, 30);
    set("BAT1", "present", "0");
    EXPECT_FALSE(read().hasBattery);
    set("BAT0", "present", "1");
    EXPECT_EQ(read().percentage, 70);
}

TEST_F(Batteries, ThatAreLinksToTheirDevicesAreFound) {
    addBattery("BAT0", "70");
    tree.makeFolder("sys/devices/acpi");
    std::filesystem::rename(tree.root() + "/sys/class/power_supply/BAT0",
                            tree.root() + "/sys/devices/acpi/BAT0");
    tree.link("sys/class/power_supply/BAT0", "../../devices/acpi/BAT0");
    EXPECT_EQ(read().percentage, 70);
}

TEST_F(Batteries, WithEmptyFilesStayWithoutFigures) {
    addBattery("BAT0", "70");
    for (const std::string_view file : filesOfBattery()) {
        tree.write("sys/class/power_supply/BAT0/" + std::string(file), "");
    }
    EXPECT_TRUE(read().hasBattery);
    EXPECT_EQ(read().percentage, 0);
    EXPECT_EQ(read().cycleCount, std::nullopt);
    EXPECT_EQ(sources.readHealth(), HealthReading{});
}

TEST_F(Batteries, WhoseFilesCannotBeReadAreKnownByTheOthers) {
    addBattery("BAT0", "70");
    set("BAT0", "energy_now", "22500000");
    set("BAT0", "scope", "System");
    for (const std::string_view file : {"capacity", "cycle_count", "scope"}) {
        const std::string path = "sys/class/power_supply/BAT0/" + std::string(file);
        tree.remove(path);
        tree.makeFolder(path);
    }
    EXPECT_EQ(read().percentage, 50);
    EXPECT_EQ(read().cycleCount, std::nullopt);
}

TEST_F(Batteries, WhoseFilesWereCutShortNeverGiveAWrongFigure) {
    const std::string folder = "sys/class/power_supply/BAT0/";
    addBattery("BAT0", "70");
    for (const std::string_view file : filesOfBattery()) {
        const std::string path = folder + std::string(file);
        if (!std::filesystem::exists(tree.root() + "/" + path)) {
            continue;
        }
        const std::string whole = *readWholeFile(tree.root() + "/" + path);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            tree.write(path, whole.substr(0, size));
            const BatteryInfo info = read();
            EXPECT_TRUE(info.percentage == 0 || info.percentage == 70) << file << size;
            EXPECT_TRUE(!info.cycleCount || info.cycleCount == 70) << file << size;
            const auto reading = sources.readHealth();
            EXPECT_TRUE(!reading || !reading->health || reading->health == 90) << file << size;
        }
        tree.write(path, whole);
    }
}

TEST_F(Batteries, WithoutADesignHaveAReadingWithoutAFigure) {
    addBattery("BAT0", "70");
    set("BAT0", "energy_full_design", "0");
    EXPECT_EQ(sources.readHealth(), HealthReading{});
}

TEST_F(Batteries, LeaveNoFileOpen) {
    addBattery("BAT0", "70");
    addMains("AC", "1");
    const auto openFiles = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    const auto before = openFiles();
    read();
    sources.readHealth();
    EXPECT_EQ(openFiles(), before);
}

TEST(LiveBattery, IsWhatTheKernelShows) {
    LinuxPowerSources sources;
    const auto descriptions = sources.descriptions();
    ASSERT_TRUE(descriptions.has_value());
    if (descriptions->empty()) {
        GTEST_SKIP() << "this machine has no battery";
    }
    EXPECT_GE(descriptions->front().currentCapacity.value_or(0), 0);
    EXPECT_LE(descriptions->front().currentCapacity.value_or(0), 100);
    const auto health = sources.readHealth();
    ASSERT_TRUE(health.has_value());
    EXPECT_TRUE(!health->health || (*health->health >= 1 && *health->health <= 100));
}

}  // namespace
}  // namespace tarnwick::platform
