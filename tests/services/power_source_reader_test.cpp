// SPDX-License-Identifier: MIT
#include "services/power_source_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include "platform/testing/scripted_power_sources.h"

namespace tarnwick {
namespace {

using platform::PowerSourceDescription;
using ::testing::ElementsAre;

PowerSourceDescription battery() {
    return {.type = "InternalBattery",
            .currentCapacity = 63,
            .isCharging = true,
            .powerSourceState = "AC Power",
            .timeToEmpty = 0,
            .timeToFullCharge = 95,
            .batteryHealthCondition = "Check Battery"};
}

class PowerSourceReader : public ::testing::Test {
 protected:
    std::optional<BatteryInfo> read(std::vector<PowerSourceDescription> descriptions) {
        sources.answers.descriptions.set(std::move(descriptions));
        return readPowerSources(sources);
    }
    BatteryInfo readBattery(const PowerSourceDescription& description) {
        return read({description}).value();
    }
    std::int64_t minutes(std::optional<std::int64_t> toEmpty, std::optional<std::int64_t> toFull) {
        PowerSourceDescription description = battery();
        description.timeToEmpty = toEmpty;
        description.timeToFullCharge = toFull;
        return readBattery(description).timeRemaining;
    }

    platform::testing::ScriptedPowerSources sources;
};

TEST_F(PowerSourceReader, IsAbsentWhenTheSystemDoesNotSay) {
    sources.answers.descriptions.set(std::nullopt);
    EXPECT_FALSE(readPowerSources(sources).has_value());
    EXPECT_THAT(sources.calls(), ElementsAre("descriptions"));
}

TEST_F(PowerSourceReader, WithoutABatterySaysSo) {
    PowerSourceDescription ups = battery();
    ups.type = "UPS";
    PowerSourceDescription odd = battery();
    odd.type = "internalbattery";
    PowerSourceDescription nameless = battery();
    nameless.type = {};
    for (const auto& descriptions :
         {std::vector<PowerSourceDescription>{}, {ups}, {odd}, {nameless}}) {
        const std::optional<BatteryInfo> info = read(descriptions);
        ASSERT_TRUE(info.has_value());
        EXPECT_FALSE(info->hasBattery);
        EXPECT_EQ(info->percentage, 0);
        EXPECT_FALSE(info->isCharging);
        EXPECT_FALSE(info->isPluggedIn);
        EXPECT_EQ(info->healthCondition, "");
        EXPECT_EQ(info->timeRemaining, 0);
        EXPECT_FALSE(info->cycleCount.has_value());
    }
    EXPECT_THAT(sources.calls(), ::testing::Each("descriptions"));
}

TEST_F(PowerSourceReader, TellsThePowerWhereTheSystemDoes) {
    PowerSourceDescription source = battery();
    EXPECT_EQ(readBattery(source).power, std::nullopt);
    source.power = 9.5;
    EXPECT_EQ(readBattery(source).power, 9.5);
}

TEST_F(PowerSourceReader, GivesWhatTheDescriptionSays) {
    sources.answers.cycleCount.set(412);
    const BatteryInfo info = readBattery(battery());
    EXPECT_TRUE(info.hasBattery);
    EXPECT_EQ(info.percentage, 63);
    EXPECT_TRUE(info.isCharging);
    EXPECT_TRUE(info.isPluggedIn);
    EXPECT_EQ(info.timeRemaining, 95);
    EXPECT_EQ(info.healthCondition, "Check Battery");
    EXPECT_EQ(info.cycleCount, 412);
    EXPECT_FALSE(info.health.has_value());
    EXPECT_FALSE(info.healthSource.has_value());
}

TEST_F(PowerSourceReader, TakesTheFirstInternalBattery) {
    PowerSourceDescription ups = battery();
    ups.type = "UPS";
    ups.currentCapacity = 1;
    PowerSourceDescription second = battery();
    second.currentCapacity = 2;
    EXPECT_EQ(read({ups, battery(), second})->percentage, 63);
}

TEST_F(PowerSourceReader, WithoutAnythingButTheTypeIsNeutral) {
    const BatteryInfo info = readBattery({.type = "InternalBattery"});
    EXPECT_TRUE(info.hasBattery);
    EXPECT_EQ(info.percentage, 0);
    EXPECT_FALSE(info.hasPercentage);
    EXPECT_FALSE(info.isCharging);
    EXPECT_FALSE(info.isPluggedIn);
    EXPECT_EQ(info.timeRemaining, 0);
    EXPECT_EQ(info.healthCondition, "");
    EXPECT_FALSE(info.cycleCount.has_value());
}

TEST_F(PowerSourceReader, DoesNotScaleTheCapacity) {
    for (const std::int64_t capacity : {-1, 0, 101, 5000}) {
        PowerSourceDescription description = battery();
        description.currentCapacity = capacity;
        EXPECT_EQ(readBattery(description).percentage, capacity);
        EXPECT_TRUE(readBattery(description).hasPercentage);
    }
}

TEST_F(PowerSourceReader, IsPluggedInOnExternalPowerOnly) {
    for (const char* state : {"Battery Power", "Off Line", "ac power", ""}) {
        PowerSourceDescription description = battery();
        description.powerSourceState = state;
        EXPECT_FALSE(readBattery(description).isPluggedIn) << state;
    }
}

TEST_F(PowerSourceReader, ShowsTheTimeToEmptyElseTheTimeToFull) {
    EXPECT_EQ(minutes(200, 95), 200);
    EXPECT_EQ(minutes(1, {}), 1);
    EXPECT_EQ(minutes(0, 95), 95);
    EXPECT_EQ(minutes({}, 95), 95);
    EXPECT_EQ(minutes({}, 0), 0);
    EXPECT_EQ(minutes({}, {}), 0);
    EXPECT_EQ(minutes(0, {}), 0);
}

TEST_F(PowerSourceReader, ShowsNoTimeThatIsStillBeingEstimated) {
    EXPECT_EQ(minutes(-1, 95), 95);
    EXPECT_EQ(minutes(-1, -1), 0);
    EXPECT_EQ(minutes({}, -1), 0);
    EXPECT_EQ(minutes(-1, {}), 0);
    EXPECT_EQ(
        minutes(std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::min()),
        0);
}

}  // namespace
}  // namespace tarnwick
