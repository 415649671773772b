// SPDX-License-Identifier: MIT
#include "platform/linux/graphics/runtime_power.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

class RuntimePowerTest : public ::testing::Test {
 protected:
    void setConnector(std::string_view name, std::string_view enabled, std::string_view dpms) {
        tree.write("drm/" + std::string(name) + "/enabled", std::string(enabled) + "\n");
        tree.write("drm/" + std::string(name) + "/dpms", std::string(dpms) + "\n");
    }

    const testing::MachineTree tree;
    RuntimePower power{tree.root() + "/device", tree.root() + "/drm/card1"};
};

TEST_F(RuntimePowerTest, ACardIsAwakeWhileItsStatusSaysSo) {
    tree.write("device/power/runtime_status", "active\n");
    EXPECT_TRUE(power.isAwake());
    for (const std::string_view status :
         {"suspended\n", "suspending\n", "resuming\n", "error\n", "perhaps\n", "", "active"}) {
        tree.write("device/power/runtime_status", status);
        EXPECT_FALSE(power.isAwake()) << status;
    }
    tree.write("device/power/runtime_status", "active\n");
    EXPECT_TRUE(power.isAwake());
}

TEST_F(RuntimePowerTest, ACardWithoutPowerManagementIsAwake) {
    EXPECT_TRUE(power.isAwake());
    tree.write("device/power/runtime_status", "unsupported\n");
    EXPECT_TRUE(power.isAwake());
}

TEST_F(RuntimePowerTest, ACardSleepsByItselfWhereTheSystemLetsIt) {
    EXPECT_FALSE(power.couldSleep());
    tree.write("device/power/control", "on\n");
    EXPECT_FALSE(power.couldSleep());
    tree.write("device/power/control", "auto\n");
    EXPECT_TRUE(power.couldSleep());
}

TEST_F(RuntimePowerTest, ACardThatDrivesAScreenDoesNotSleep) {
    tree.write("device/power/control", "auto\n");
    setConnector("card1-eDP-1", "disabled", "On");
    setConnector("card1-DP-1", "enabled", "Off");
    setConnector("card10-DP-1", "enabled", "On");
    EXPECT_TRUE(power.couldSleep());
    setConnector("card1-DP-1", "enabled", "On");
    EXPECT_FALSE(power.couldSleep());
    setConnector("card1-DP-1", "disabled", "Off");
    EXPECT_TRUE(power.couldSleep());
    setConnector("card1-eDP-1", "enabled", "On");
    EXPECT_FALSE(power.couldSleep());
}

TEST_F(RuntimePowerTest, ADockBringsScreens) {
    tree.write("device/power/control", "auto\n");
    EXPECT_TRUE(power.couldSleep());
    setConnector("card1-DP-9", "enabled", "On");
    EXPECT_FALSE(power.couldSleep());
    // What is kept open of a connector that has gone holds nothing.
    setConnector("card1-DP-9", "", "");
    tree.remove("drm/card1-DP-9");
    EXPECT_TRUE(power.couldSleep());
}

TEST_F(RuntimePowerTest, ACardWithUsersIsHeldAwake) {
    EXPECT_FALSE(power.isHeldAwake());
    tree.write("device/power/runtime_usage", "0\n");
    EXPECT_FALSE(power.isHeldAwake());
    tree.write("device/power/runtime_usage", "2\n");
    EXPECT_TRUE(power.isHeldAwake());
    tree.write("device/power/runtime_usage", "-1\n");
    EXPECT_FALSE(power.isHeldAwake());
}

TEST_F(RuntimePowerTest, TheTimeAwakeIsTheKernels) {
    EXPECT_EQ(power.millisecondsAwake(), std::nullopt);
    tree.write("device/power/runtime_active_time", "912345\n");
    EXPECT_EQ(power.millisecondsAwake(), 912345U);
}

TEST_F(RuntimePowerTest, TheTimeUntilSleepIsTheDriversOwn) {
    EXPECT_EQ(power.secondsUntilSleep(), 8);
    tree.write("device/power/autosuspend_delay_ms", "5000\n");
    EXPECT_EQ(power.secondsUntilSleep(), 5);
    tree.write("device/power/autosuspend_delay_ms", "10000\n");
    EXPECT_EQ(power.secondsUntilSleep(), 10);
    tree.write("device/power/autosuspend_delay_ms", "18446744073709551615\n");
    EXPECT_EQ(power.secondsUntilSleep(), 60);
    tree.write("device/power/autosuspend_delay_ms", "-1\n");
    EXPECT_EQ(power.secondsUntilSleep(), 8);
}

}  // namespace
}  // namespace tarnwick::platform
