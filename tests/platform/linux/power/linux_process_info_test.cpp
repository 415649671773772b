// SPDX-License-Identifier: MIT
#include "platform/linux/power/linux_process_info.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <unistd.h>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using testing::MachineTree;
using testing::recordedMachine;

TEST(ActiveProcessorCount, IsThatOfTheTree) {
    EXPECT_EQ(LinuxProcessInfo(recordedMachine("laptop")).activeProcessorCount(), 8);
    EXPECT_EQ(LinuxProcessInfo(recordedMachine("server")).activeProcessorCount(), 63);
    EXPECT_EQ(LinuxProcessInfo(recordedMachine("old-kernel")).activeProcessorCount(), 2);
}

TEST(ActiveProcessorCount, IsAskedOfTheSystemWhereTheTreeSaysNothing) {
    EXPECT_EQ(LinuxProcessInfo(recordedMachine("damaged")).activeProcessorCount(),
              ::sysconf(_SC_NPROCESSORS_ONLN));
    EXPECT_GE(LinuxProcessInfo("/no such machine").activeProcessorCount(), 1);
}

TEST(ThermalState, IsUnknownWhereThereIsNoZone) {
    EXPECT_EQ(LinuxProcessInfo(recordedMachine("no such machine")).thermalState(),
              kUnknownThermalState);
    EXPECT_EQ(LinuxProcessInfo(recordedMachine("virtual-machine")).thermalState(),
              kUnknownThermalState);
}

class ThermalZones : public ::testing::Test {
 protected:
    static constexpr std::string_view folder = "sys/class/thermal/thermal_zone";

    void setTemperature(int zone, std::string_view temperature) {
        tree.write(std::string(folder) + std::to_string(zone) + "/temp",
                   std::string(temperature) + "\n");
    }
    void setMode(int zone, std::string_view mode) {
        tree.write(std::string(folder) + std::to_string(zone) + "/mode", std::string(mode) + "\n");
    }
    void setTrip(int zone, int trip, std::string_view kind, std::string_view temperature) {
        const std::string path =
            std::string(folder) + std::to_string(zone) + "/trip_point_" + std::to_string(trip);
        tree.write(path + "_type", std::string(kind) + "\n");
        tree.write(path + "_temp", std::string(temperature) + "\n");
    }
    // A zone that throttles at 80, is hot at 90 and ends at 100 degrees.
    void addZone(int zone, std::string_view temperature) {
        setTrip(zone, 0, "critical", "100000");
        setTrip(zone, 1, "active", "30000");
        setTrip(zone, 2, "hot", "90000");
        setTrip(zone, 3, "passive", "80000");
        setMode(zone, "enabled");
        setTemperature(zone, temperature);
    }
    std::int64_t stateNow() { return info.thermalState(); }

    const MachineTree tree;
    double now = 1000;
    LinuxProcessInfo info{tree.root(), [this] { return now; }};
};

TEST_F(ThermalZones, ATemperatureIsJudgedByTheTripPoints) {
    addZone(0, "79999");
    EXPECT_EQ(stateNow(), 0);
    setTemperature(0, "80000");
    EXPECT_EQ(stateNow(), 1);
    setTemperature(0, "90000");
    EXPECT_EQ(stateNow(), 2);
    setTemperature(0, "100000");
    EXPECT_EQ(stateNow(), 3);
    setTemperature(0, "50000");
    EXPECT_EQ(stateNow(), 0);
}

TEST_F(ThermalZones, TheHottestZoneIsJudgedByItsOwnTripPoints) {
    addZone(0, "85000");
    setTrip(1, 0, "passive", "95000");
    setTemperature(1, "88000");
    EXPECT_EQ(stateNow(), 0);
    setTemperature(1, "84000");
    EXPECT_EQ(stateNow(), 1);
    setTemperature(1, "96000");
    EXPECT_EQ(stateNow(), 1);
}

TEST_F(ThermalZones, ACoolerZoneIsNotJudged) {
    // The hottest zone comes first, in the middle or last, in any order of the folder's list.
    for (int hottest = 0; hottest < 3; ++hottest) {
        for (int zone = 0; zone < 3; ++zone) {
            setTrip(zone, 0, "passive", zone == hottest ? "95000" : "80000");
            setTemperature(zone, zone == hottest ? "88000" : "85000");
        }
        now += 60;
        EXPECT_EQ(stateNow(), 0) << hottest;
    }
}

TEST_F(ThermalZones, OfEquallyHotZonesTheWorstCounts) {
    // The worst zone comes first, in the middle or last, in any order of the folder's list.
    for (int worst = 0; worst < 3; ++worst) {
        setTrip(worst, 0, "hot", "70000");
        setTemperature(worst, "75000");
        setTrip((worst + 1) % 3, 0, "passive", "70000");
        setTemperature((worst + 1) % 3, "75000");
        setTrip((worst + 2) % 3, 0, "critical", "90000");
        setTemperature((worst + 2) % 3, "75000");
        now += 60;
        EXPECT_EQ(stateNow(), 2) << worst;
    }
}

TEST_F(ThermalZones, AZoneWithoutTripPointsSaysNothing) {
    addZone(0, "85000");
    setTemperature(1, "120000");
    setTrip(2, 0, "active", "40000");
    setTemperature(2, "119000");
    setTrip(3, 0, "passive", "-274000");
    setTrip(3, 1, "passive", "0");
    setTemperature(3, "118000");
    EXPECT_EQ(stateNow(), 1);
}

TEST_F(ThermalZones, AbsurdReadingsAreIgnored) {
    addZone(0, "85000");
    addZone(1, "255000");
    addZone(2, "150000");
    addZone(3, "-5000");
    addZone(4, "");
    addZone(5, "hot");
    EXPECT_EQ(stateNow(), 1);
    setTemperature(0, "0");
    EXPECT_EQ(stateNow(), kUnknownThermalState);
}

TEST_F(ThermalZones, ADisabledZoneIsIgnored) {
    addZone(0, "95000");
    setMode(0, "disabled");
    EXPECT_EQ(stateNow(), kUnknownThermalState);
    setMode(0, "enabled");
    EXPECT_EQ(stateNow(), 2);
}

TEST_F(ThermalZones, AZoneWithoutAModeCounts) {
    addZone(0, "95000");
    tree.remove("sys/class/thermal/thermal_zone0/mode");
    EXPECT_EQ(stateNow(), 2);
}

TEST_F(ThermalZones, OtherFoldersAreNoZones) {
    tree.write("sys/class/thermal/cooling_device0/trip_point_0_type", "critical\n");
    tree.write("sys/class/thermal/cooling_device0/trip_point_0_temp", "1000\n");
    tree.write("sys/class/thermal/cooling_device0/temp", "99000\n");
    EXPECT_EQ(stateNow(), kUnknownThermalState);
}

TEST_F(ThermalZones, AreReadAtEachCall) {
    addZone(0, "50000");
    EXPECT_EQ(info.thermalState(), 0);
    setTemperature(0, "95000");
    EXPECT_EQ(info.thermalState(), 2);
}

TEST_F(ThermalZones, ZonesAreLookedForAgainEveryMinute) {
    EXPECT_EQ(info.thermalState(), kUnknownThermalState);
    addZone(0, "85000");
    now += 59;
    EXPECT_EQ(info.thermalState(), kUnknownThermalState);
    now += 2;
    EXPECT_EQ(info.thermalState(), 1);
    tree.remove("sys/class/thermal/thermal_zone0");
    now += 61;
    EXPECT_EQ(info.thermalState(), kUnknownThermalState);
}

TEST_F(ThermalZones, AreLookedForAgainWhenTheClockWentBack) {
    EXPECT_EQ(info.thermalState(), kUnknownThermalState);
    addZone(0, "85000");
    now -= 500;
    EXPECT_EQ(info.thermalState(), 1);
}

TEST_F(ThermalZones, TruncatedFilesNeverAddHeat) {
    addZone(0, "85000");
    EXPECT_EQ(stateNow(), 1);
    for (const std::string_view text : {"", "8", "85", "850", "8500", "85000"}) {
        tree.write("sys/class/thermal/thermal_zone0/temp", text);
        EXPECT_EQ(stateNow(), kUnknownThermalState) << text;
    }
}

}  // namespace
}  // namespace tarnwick::platform
