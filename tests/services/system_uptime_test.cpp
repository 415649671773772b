// SPDX-License-Identifier: MIT
#include "services/system_uptime.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include "platform/testing/scripted_kernel.h"

namespace tarnwick {
namespace {

using platform::TimeValue;
using testing::ElementsAre;

TEST(SystemUptime, IsTheTimeSinceBoot) {
    platform::testing::ScriptedKernel kernel;
    kernel.answers.bootTime.set(TimeValue{.seconds = 1'700'000'000});
    kernel.setWallClockSeconds(1'700'000'090.25);
    EXPECT_EQ(readUptime(kernel), 90.25);
}

TEST(SystemUptime, IgnoresTheMicrosecondsOfTheBootTime) {
    platform::testing::ScriptedKernel kernel;
    kernel.answers.bootTime.set(TimeValue{.seconds = 1'700'000'000, .microseconds = 999'999});
    kernel.setWallClockSeconds(1'700'000'001.5);
    EXPECT_EQ(readUptime(kernel), 1.5);
}

TEST(SystemUptime, IsZeroWithoutABootTime) {
    platform::testing::ScriptedKernel kernel;
    kernel.setWallClockSeconds(1'700'000'000);
    EXPECT_EQ(readUptime(kernel), 0);
    EXPECT_EQ(uptimeText(readUptime(kernel)), "0m");
}

TEST(SystemUptime, ReadsTheBootTimeAndThenTheClock) {
    platform::testing::ScriptedKernel kernel;
    kernel.answers.bootTime.set(TimeValue{.seconds = 5});
    readUptime(kernel);
    EXPECT_THAT(kernel.calls(), ElementsAre("bootTime", "wallClockSeconds"));
}

TEST(SystemUptime, KeepsNothingBetweenReads) {
    platform::testing::ScriptedKernel kernel;
    kernel.setWallClockSeconds(100);
    kernel.answers.bootTime.queue(TimeValue{.seconds = 10});
    kernel.answers.bootTime.queue(std::nullopt);
    kernel.answers.bootTime.queue(TimeValue{.seconds = 40});
    EXPECT_EQ(readUptime(kernel), 90);
    EXPECT_EQ(readUptime(kernel), 0);
    EXPECT_EQ(readUptime(kernel), 60);
}

TEST(SystemUptime, IsNegativeWhenTheClockStandsBeforeTheBoot) {
    platform::testing::ScriptedKernel kernel;
    kernel.setWallClockSeconds(100);
    kernel.answers.bootTime.set(TimeValue{.seconds = 400});
    EXPECT_EQ(readUptime(kernel), -300);
}

struct TextCase {
    const char* label;
    double seconds;
    const char* expected;
};

class UptimeText : public testing::TestWithParam<TextCase> {};

TEST_P(UptimeText, Reads) {
    EXPECT_EQ(uptimeText(GetParam().seconds), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    , UptimeText,
    testing::Values(
        TextCase{"Zero", 0, "0m"}, TextCase{"NegativeZero", -0.0, "0m"},
        TextCase{"UnderAMinute", 59, "0m"}, TextCase{"TruncatesBelowAMinute", 59.999999, "0m"},
        TextCase{"AMinute", 60, "1m"}, TextCase{"Minutes", 17 * 60 + 59, "17m"},
        TextCase{"LastSecondBelowAnHour", 3599, "59m"},
        TextCase{"TruncatesBelowAnHour", 3599.999, "59m"}, TextCase{"AnHour", 3600, "1h 0m"},
        TextCase{"HoursAndMinutes", 5 * 3600 + 17 * 60 + 59, "5h 17m"},
        TextCase{"LastSecondBelowADay", 86399, "23h 59m"},
        TextCase{"TruncatesBelowADay", 86399.999, "23h 59m"}, TextCase{"ADay", 86400, "1d 0h 0m"},
        TextCase{"ADayAndAMinute", 86460, "1d 0h 1m"},
        TextCase{"ADayAnHourAMinute", 90061, "1d 1h 1m"},
        TextCase{"DaysHoursMinutes", 2 * 86400 + 5 * 3600 + 17 * 60, "2d 5h 17m"},
        TextCase{"ManyDays", 1234.0 * 86400 + 86399, "1234d 23h 59m"},
        TextCase{"LargestThatFits", 9223372036854774784.0, "106751991167300d 15h 13m"},
        TextCase{"FractionOfASecondBefore", -0.9, "0m"}, TextCase{"NegativeMinutes", -300, "-5m"},
        TextCase{"NegativeUnderAMinute", -59, "0m"},
        TextCase{"NegativeHoursShowOnlyMinutes", -7380, "-3m"},
        TextCase{"SmallestThatFits", -9223372036854775808.0, "-30m"}),
    [](const auto& row) { return std::string(row.param.label); });

TEST(UptimeTextDeathTest, AValueThatIsNotANumberIsFatal) {
    EXPECT_DEATH(uptimeText(std::numeric_limits<double>::quiet_NaN()), "");
}

TEST(UptimeTextDeathTest, AnInfiniteValueIsFatal) {
    EXPECT_DEATH(uptimeText(std::numeric_limits<double>::infinity()), "");
    EXPECT_DEATH(uptimeText(-std::numeric_limits<double>::infinity()), "");
}

TEST(UptimeTextDeathTest, AValueThatDoesNotFitIsFatal) {
    EXPECT_DEATH(uptimeText(9223372036854775808.0), "");
    EXPECT_DEATH(uptimeText(std::nextafter(-9223372036854775808.0, -1e300)), "");
    EXPECT_DEATH(uptimeText(1e300), "");
}

}  // namespace
}  // namespace tarnwick
