// SPDX-License-Identifier: MIT
#include "tools/pace.h"

#include <gtest/gtest.h>

namespace tarnwick::probe {
namespace {

TEST(Pace, HasMomentsAtEqualDistances) {
    Pace pace(2, 100);
    EXPECT_EQ(pace.next(), 102);
    EXPECT_EQ(pace.next(), 104);
}

TEST(Pace, DoesNotDriftWithLateReadings) {
    Pace pace(2, 100);
    for (int reading = 1; reading <= 5; ++reading) {
        const double moment = pace.next();
        EXPECT_EQ(moment, 100 + 2 * reading);
        pace.begin(moment + 1.9);
    }
}

TEST(Pace, DoesNotMakeUpForMomentsThatWereMissed) {
    Pace pace(2, 100);
    EXPECT_EQ(pace.next(), 102);
    pace.begin(104);
    EXPECT_EQ(pace.next(), 106);
    pace.begin(1000.5);
    EXPECT_EQ(pace.next(), 1002.5);
    EXPECT_EQ(pace.next(), 1004.5);
}

}  // namespace
}  // namespace tarnwick::probe
