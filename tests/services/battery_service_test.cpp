#include "services/battery_service.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

void expectNoBattery(const BatteryInfo& battery) {
    EXPECT_FALSE(battery.hasBattery);
    EXPECT_EQ(battery.percentage, 0);
    EXPECT_FALSE(battery.isCharging);
    EXPECT_FALSE(battery.isPluggedIn);
    EXPECT_FALSE(battery.health.has_value());
    EXPECT_FALSE(battery.healthSource.has_value());
    EXPECT_EQ(battery.healthCondition, "");
    EXPECT_FALSE(battery.cycleCount.has_value());
    EXPECT_EQ(battery.timeRemaining, 0);
}

TEST(BatteryService, WithoutAPowerSourceReportsNoBattery) {
    BatteryService service;
    for (const bool force : {false, true}) {
        expectNoBattery(service.currentBatteryInfo(force));
        expectNoBattery(service.batteryInfoWithHealth(force));
    }
}

}  // namespace
}  // namespace tarnwick
