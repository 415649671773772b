// SPDX-License-Identifier: MIT
// The battery block of recorded machines: from the kernel's files to what the panel says.
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/power/linux_power_sources.h"
#include "platform/testing/memory_user_defaults.h"
#include "services/battery_service.h"
#include "services/power_source_reader.h"
#include "tests/platform/linux/machine_tree.h"
#include "tests/ui/panel/home_fixtures.h"
#include "tests/ui/panel/page_queries.h"

namespace tarnwick::testing {
namespace {

class RecordedBatteryBlock : public ::testing::Test {
 protected:
    /// The home page after one slow refresh of the machine below `root`.
    Page pageOf(const std::string& root) {
        platform::LinuxPowerSources sources(root);
        BatteryService service(
            store, [&] { return sources.readHealth(); }, [&] { return readPowerSources(sources); },
            [] { return platform::Date{1000}; }, [] { return 0.0; },
            [&] { return sources.identity(); });
        HomePageInputs inputs = calmMachine();
        service.currentBatteryInfo(false);
        inputs.batteryInfo = service.batteryInfoWithHealth(false);
        return homePage(inputs, formatter);
    }
    Page recorded(std::string_view machine) {
        return pageOf(platform::testing::recordedMachine(machine));
    }

    platform::testing::MemoryUserDefaults store;
    PlainByteCountFormatter formatter;
};

TEST_F(RecordedBatteryBlock, ShowsCapacityAndCyclesOfTheLaptop) {
    const Page page = recorded("laptop");
    EXPECT_EQ(block<InfoRow>(page, "battery.capacity"), (InfoRow{"Max Capacity", "87%"}));
    EXPECT_EQ(block<InfoRow>(page, "battery.cycles"), (InfoRow{"Cycles", "412"}));
    EXPECT_FALSE(contains(page, "battery.condition"));
    EXPECT_FALSE(contains(page, "battery.state"));
}

TEST_F(RecordedBatteryBlock, ShowsTheConditionOfTheHandheld) {
    const Page page = recorded("handheld");
    EXPECT_EQ(block<InfoRow>(page, "battery.capacity"), (InfoRow{"Max Capacity", "94%"}));
    EXPECT_EQ(block<InfoRow>(page, "battery.cycles"), (InfoRow{"Cycles", "156"}));
    EXPECT_EQ(block<InfoRow>(page, "battery.condition"), (InfoRow{"Condition", "Normal"}));
}

TEST_F(RecordedBatteryBlock, ShowsTheConditionInTheWordsOfThePanel) {
    const platform::testing::MachineTree tree("handheld");
    const auto condition = [&](const std::string& word) -> std::string {
        tree.write("sys/class/power_supply/BAT1/health", word + "\n");
        return block<InfoRow>(pageOf(tree.root()), "battery.condition").value;
    };
    EXPECT_EQ(condition("Good"), "Normal");
    for (const char* fault : {"Dead", "Unspecified failure", "Blown fuse", "Cell imbalance"}) {
        EXPECT_EQ(condition(fault), "Service Recommended") << fault;
    }
    for (const char* other : {"Overheat", "Cold", "Over voltage"}) {
        EXPECT_EQ(condition(other), "Unknown") << other;
    }
    // A fault that has passed is not remembered.
    tree.write("sys/class/power_supply/BAT1/health", "Unknown\n");
    EXPECT_FALSE(contains(pageOf(tree.root()), "battery.condition"));
}

TEST_F(RecordedBatteryBlock, ShowsSeveralPacksAsOne) {
    const Page page = recorded("two-batteries");
    EXPECT_EQ(block<InfoRow>(page, "battery.capacity"), (InfoRow{"Max Capacity", "91%"}));
    EXPECT_EQ(block<InfoRow>(page, "battery.cycles"), (InfoRow{"Cycles", "31"}));
}

TEST_F(RecordedBatteryBlock, ShowsNoCyclesThatTheDriverDoesNotKnow) {
    const Page page = recorded("batteries/charge-only");
    EXPECT_EQ(block<InfoRow>(page, "battery.capacity"), (InfoRow{"Max Capacity", "91%"}));
    EXPECT_FALSE(contains(page, "battery.cycles"));
}

TEST_F(RecordedBatteryBlock, ShowsThePackThatIsIn) {
    const Page before = recorded("batteries/swapped-before");
    EXPECT_EQ(block<InfoRow>(before, "battery.capacity").value, "72%");
    EXPECT_EQ(block<InfoRow>(before, "battery.cycles").value, "611");
    const Page after = recorded("batteries/swapped-after");
    EXPECT_EQ(block<InfoRow>(after, "battery.capacity").value, "100%");
    EXPECT_EQ(block<InfoRow>(after, "battery.cycles").value, "3");
}

TEST_F(RecordedBatteryBlock, ShowsNoFaultOfAnEmptyBattery) {
    const Page page = recorded("batteries/dead-but-empty");
    EXPECT_EQ(block<InfoRow>(page, "battery.capacity").value, "97%");
    EXPECT_FALSE(contains(page, "battery.condition"));
}

TEST_F(RecordedBatteryBlock, StaysWithoutAnyFigure) {
    for (const std::string_view machine : {"damaged", "batteries/without-design"}) {
        const Page page = recorded(machine);
        EXPECT_FALSE(contains(page, "battery.state")) << machine;
        EXPECT_EQ(block<InfoRow>(page, "battery.capacity").value, "Unknown") << machine;
    }
}

TEST_F(RecordedBatteryBlock, SaysThatThereIsNoBattery) {
    for (const std::string_view machine :
         {"workstation", "server", "container-host", "old-kernel", "virtual-machine"}) {
        const Page page = recorded(machine);
        EXPECT_EQ(block<CaptionText>(page, "battery.state").text, "Battery data not available")
            << machine;
        EXPECT_FALSE(contains(page, "battery.capacity")) << machine;
    }
}

}  // namespace
}  // namespace tarnwick::testing
