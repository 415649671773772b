// SPDX-License-Identifier: MIT
#include "settings/metric_thresholds.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace tarnwick {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Row {
    const char* name;
    double normal;
    double high;
    double expectedNormal;
    double expectedHigh;
};

class NormalizedThresholds : public testing::TestWithParam<Row> {};

TEST_P(NormalizedThresholds, GivesAUsablePair) {
    const ThresholdPair pair = normalizedThresholds(GetParam().normal, GetParam().high);
    EXPECT_EQ(pair.normal, GetParam().expectedNormal);
    EXPECT_EQ(pair.high, GetParam().expectedHigh);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, NormalizedThresholds,
    testing::Values(Row{"AUsablePairStays", 80, 90, 80, 90},
                    Row{"FractionsStay", 12.25, 13.75, 12.25, 13.75},
                    Row{"TheWidestPairStays", 1, 100, 1, 100},
                    Row{"ALowerOneAboveTheUpperRaisesTheUpper", 95, 90, 95, 96},
                    Row{"EqualOnesAreKeptOnePointApart", 60, 60, 60, 61},
                    Row{"LessThanOnePointApartBecomesOnePoint", 60, 60.5, 60, 61},
                    Row{"ExactlyOnePointApartStays", 60, 61, 60, 61},
                    Row{"ZerosBecomeTheLowestPair", 0, 0, 1, 2},
                    Row{"NegativesBecomeTheLowestPair", -40, -50, 1, 2},
                    Row{"ALowerOneBelowOneIsRaised", 0.5, 50, 1, 50},
                    Row{"AnUpperOneJustAboveOneBecomesTwo", 0, 1.5, 1, 2},
                    Row{"HundredsBecomeTheHighestPair", 100, 100, 99, 100},
                    Row{"ALowerOneAbove99IsLowered", 99.5, 100, 99, 100},
                    Row{"AnUpperOneAbove100IsLowered", 50, 150, 50, 100},
                    Row{"BothFarAboveBecomeTheHighestPair", 500, 700, 99, 100},
                    Row{"ALowerOneBetween98And99LeavesRoom", 98.5, 98.6, 98.5, 99.5},
                    Row{"ALowerOneThatIsNoNumberCountsAsLow", kNaN, 50, 1, 50},
                    Row{"AnUpperOneThatIsNoNumberCountsAsLow", 50, kNaN, 50, 51},
                    Row{"NoNumbersBecomeTheLowestPair", kNaN, kNaN, 1, 2},
                    Row{"InfinitiesBecomeTheHighestPair", kInfinity, kInfinity, 99, 100},
                    Row{"NegativeInfinitiesBecomeTheLowestPair", -kInfinity, -kInfinity, 1, 2}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(NormalizedThresholdsSweep, EveryPairEndsInRangeAndApart) {
    for (double normal = -20; normal <= 130; normal += 0.5) {
        for (double high = -20; high <= 130; high += 0.5) {
            const ThresholdPair pair = normalizedThresholds(normal, high);
            ASSERT_GE(pair.normal, 1) << normal << " " << high;
            ASSERT_LE(pair.normal, 99) << normal << " " << high;
            ASSERT_GE(pair.high, pair.normal + 1) << normal << " " << high;
            ASSERT_LE(pair.high, 100) << normal << " " << high;
            if (normal >= 1 && normal <= 99) {
                ASSERT_EQ(pair.normal, normal);
            }
            if (high >= pair.normal + 1 && high <= 100) {
                ASSERT_EQ(pair.high, high);
            }
        }
    }
}

}  // namespace
}  // namespace tarnwick
