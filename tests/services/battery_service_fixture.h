// SPDX-License-Identifier: MIT
// A battery service in virtual time on a real store file; the file outlives the service.
#pragma once

#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/linux/settings/json_user_defaults.h"
#include "platform/testing/manual_dispatch.h"
#include "services/battery_service.h"
#include "tests/platform/linux/temporary_folder.h"

namespace tarnwick::testing {

inline constexpr auto kHealthKey = "battery.exactHealth";
inline constexpr auto kConditionKey = "battery.exactCondition";
inline constexpr auto kLastFetchKey = "battery.lastExactFetch";
inline constexpr auto kFailedKey = "battery.lastAttemptFailed";
inline constexpr auto kIdentityKey = "battery.identity";

inline constexpr double kDay = 86'400;

inline BatteryInfo makeBattery(std::int64_t percentage, std::string condition = {}) {
    BatteryInfo info;
    info.percentage = percentage;
    info.isCharging = true;
    info.isPluggedIn = true;
    info.healthCondition = std::move(condition);
    info.cycleCount = 7;
    info.timeRemaining = 95;
    info.hasBattery = true;
    return info;
}

inline void expectNoBattery(const BatteryInfo& battery) {
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

class BatteryServiceFixture : public ::testing::Test {
 protected:
    BatteryServiceFixture() { restart(); }
    ~BatteryServiceFixture() override { EXPECT_EQ(notices, ""); }

    /// Ends the service and its store and starts both again on the same file.
    void restart() {
        service.reset();
        dispatch.runMain();
        store = std::make_unique<platform::JsonUserDefaults>(
            folder / "settings.json", dispatch, [this](std::string_view line) { notices += line; });
        dispatch.runMain();
        service = std::make_unique<BatteryService>(
            *store,
            [this] {
                ++healthReads;
                advance(readTakes);
                return health;
            },
            [this] {
                ++batteryReads;
                advance(readTakes);
                return battery;
            },
            [this] { return platform::Date{wallTime}; }, [this] { return elapsed; },
            [this] { return identity; });
    }
    /// Sets up a machine on which a battery has been seen.
    void see(const BatteryInfo& seen) {
        battery = seen;
        service->currentBatteryInfo(false);
    }
    /// Whether an unforced call asks for the health now.
    bool isHealthDue() {
        const int before = healthReads;
        service->batteryInfoWithHealth(false);
        return healthReads > before;
    }
    /// Whether an unforced call looks for a battery now.
    bool looksForBattery() {
        const int before = batteryReads;
        service->currentBatteryInfo(false);
        return batteryReads > before;
    }
    void advance(double seconds) {
        wallTime += seconds;
        elapsed += seconds;
    }

    // What the sources answer, and how often they were asked.
    std::optional<BatteryInfo> battery = BatteryInfo{};
    std::optional<HealthReading> health;
    std::string identity;
    int batteryReads = 0;
    int healthReads = 0;
    // Seconds that each of these reads takes.
    double readTakes = 0;
    double wallTime = 1'700'000'000;
    double elapsed = 1000;

    TemporaryFolder folder;
    std::string notices;
    platform::testing::ManualDispatch dispatch;
    std::unique_ptr<platform::JsonUserDefaults> store;
    std::unique_ptr<BatteryService> service;
};

}  // namespace tarnwick::testing
