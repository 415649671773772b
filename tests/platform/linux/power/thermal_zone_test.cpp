// SPDX-License-Identifier: MIT
#include "platform/linux/power/thermal_zone.h"

#include <gtest/gtest.h>
#include <string_view>

namespace tarnwick::platform {
namespace {

TEST(Temperature, IsOneNumberInThousandths) {
    EXPECT_EQ(parseTemperature("47000\n"), 47000);
    EXPECT_EQ(parseTemperature("1000\n"), 1000);
    EXPECT_EQ(parseTemperature("149999\n"), 149999);
}

TEST(Temperature, WhatNoSensorCanMeanIsAbsent) {
    for (const std::string_view text : {"0\n", "999\n", "-1\n", "-274000\n", "-40000\n", "150000\n",
                                        "255000\n", "9223372036854775807\n"}) {
        EXPECT_EQ(parseTemperature(text), std::nullopt) << text;
    }
}

TEST(Temperature, DamagedTextIsAbsent) {
    for (const std::string_view text : {"", "\n", "47000", "47000 \n", "47.0\n", "warm\n",
                                        " 47000\n", "99999999999999999999\n"}) {
        EXPECT_EQ(parseTemperature(text), std::nullopt) << text;
    }
}

TEST(ThermalState, RisesWithTheTripPoints) {
    TripPoints trips;
    trips.add("passive", 80000);
    trips.add("hot", 95000);
    trips.add("critical", 100000);
    EXPECT_EQ(thermalStateAt(79999, trips), 0);
    EXPECT_EQ(thermalStateAt(80000, trips), 1);
    EXPECT_EQ(thermalStateAt(94999, trips), 1);
    EXPECT_EQ(thermalStateAt(95000, trips), 2);
    EXPECT_EQ(thermalStateAt(99999, trips), 2);
    EXPECT_EQ(thermalStateAt(100000, trips), 3);
}

TEST(ThermalState, TripPointsThatAreMissingAreNotReached) {
    TripPoints trips;
    trips.add("critical", 100000);
    EXPECT_EQ(thermalStateAt(99999, trips), 0);
    EXPECT_EQ(thermalStateAt(100000, trips), 3);
    EXPECT_EQ(thermalStateAt(149000, TripPoints{}), 0);
}

TEST(ThermalState, OfSeveralTripPointsTheLowestCounts) {
    TripPoints trips;
    trips.add("passive", 90000);
    trips.add("passive", 80000);
    trips.add("passive", 85000);
    EXPECT_EQ(trips, (TripPoints{.passive = 80000, .hot = std::nullopt, .critical = std::nullopt}));
}

TEST(ThermalState, FansSayNothing) {
    TripPoints trips;
    trips.add("active", 40000);
    trips.add("", 40000);
    EXPECT_FALSE(trips.any());
}

}  // namespace
}  // namespace tarnwick::platform
