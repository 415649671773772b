// SPDX-License-Identifier: MIT
#include "platform/macos/readers/profiler_health.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/testing/scripted_child_processes.h"

namespace tarnwick {
namespace {

using ::testing::ElementsAre;

constexpr const char* kReport = R"({
  "SPPowerDataType" : [
    {
      "_name" : "spbattery_information",
      "sppower_battery_charge_info" : { "sppower_battery_state_of_charge" : 80 },
      "sppower_battery_health_info" : {
        "sppower_battery_cycle_count" : 214,
        "sppower_battery_health" : "Good",
        "sppower_battery_health_maximum_capacity" : "87%"
      }
    },
    { "_name" : "sppower_information" }
  ]
})";

std::string reportOf(const std::string& info) {
    return R"({"SPPowerDataType":[{"sppower_battery_health_info":)" + info + "}]}";
}

std::optional<std::int64_t> healthOf(const std::string& capacity) {
    const auto reading = decodeProfilerHealth(
        reportOf(R"({"sppower_battery_health_maximum_capacity":")" + capacity + "\"}"));
    EXPECT_TRUE(reading.has_value()) << capacity;
    return reading ? reading->health : std::nullopt;
}

constexpr HealthReading kNoFigures{};

TEST(DecodeProfilerHealth, FindsFigureAndWord) {
    EXPECT_EQ(decodeProfilerHealth(kReport), (HealthReading{.health = 87, .condition = "Good"}));
}

TEST(DecodeProfilerHealth, KeepsTheDigitsOfTheCapacity) {
    EXPECT_EQ(healthOf("87%"), 87);
    EXPECT_EQ(healthOf("87"), 87);
    EXPECT_EQ(healthOf(" 8 7 \u00a0%"), 87);
    EXPECT_EQ(healthOf("about 9 %"), 9);
    EXPECT_EQ(healthOf("0087%"), 87);
    EXPECT_EQ(healthOf("1%"), 1);
}

TEST(DecodeProfilerHealth, CapsTheCapacityAtAHundred) {
    EXPECT_EQ(healthOf("100%"), 100);
    EXPECT_EQ(healthOf("101%"), 100);
    EXPECT_EQ(healthOf("9223372036854775807"), 100);
}

TEST(DecodeProfilerHealth, KnowsNoCapacityBelowOne) {
    EXPECT_EQ(healthOf("0%"), std::nullopt);
    EXPECT_EQ(healthOf("000"), std::nullopt);
}

TEST(DecodeProfilerHealth, KnowsNoCapacityWithoutDigits) {
    EXPECT_EQ(healthOf(""), std::nullopt);
    EXPECT_EQ(healthOf("%"), std::nullopt);
    EXPECT_EQ(healthOf("unknown"), std::nullopt);
    EXPECT_EQ(healthOf("\u0668\u0667%"), std::nullopt);
}

TEST(DecodeProfilerHealth, KnowsNoCapacityThatNoNumberHolds) {
    EXPECT_EQ(healthOf("9223372036854775808"), std::nullopt);
    EXPECT_EQ(healthOf(std::string(5000, '9')), std::nullopt);
}

TEST(DecodeProfilerHealth, TakesASignForNothing) {
    EXPECT_EQ(healthOf("-87%"), 87);
    EXPECT_EQ(healthOf("+87%"), 87);
}

TEST(DecodeProfilerHealth, WantsACapacityInWords) {
    for (const char* capacity : {"87", "87.5", "true", "null", "[\"87%\"]", "{}"}) {
        const auto reading = decodeProfilerHealth(
            reportOf(std::string(R"({"sppower_battery_health":"Fair",)"
                                 R"("sppower_battery_health_maximum_capacity":)") +
                     capacity + "}"));
        EXPECT_EQ(reading, (HealthReading{.health = {}, .condition = "Fair"})) << capacity;
    }
}

TEST(DecodeProfilerHealth, WantsAConditionInWords) {
    for (const char* condition : {"1", "true", "null", "[\"Good\"]", "{}"}) {
        const auto reading = decodeProfilerHealth(
            reportOf(std::string(R"({"sppower_battery_health_maximum_capacity":"9%",)"
                                 R"("sppower_battery_health":)") +
                     condition + "}"));
        EXPECT_EQ(reading, (HealthReading{.health = 9, .condition = {}})) << condition;
    }
}

TEST(DecodeProfilerHealth, GivesAnEmptyConditionAsItIs) {
    EXPECT_EQ(decodeProfilerHealth(reportOf(R"({"sppower_battery_health":""})")),
              (HealthReading{.health = {}, .condition = ""}));
}

TEST(DecodeProfilerHealth, IsAReadingWithoutFiguresWhereNothingIsSaid) {
    EXPECT_EQ(decodeProfilerHealth(R"({"SPPowerDataType":[]})"), kNoFigures);
    EXPECT_EQ(decodeProfilerHealth(R"({"SPPowerDataType":[{},{"_name":"x"}]})"), kNoFigures);
    EXPECT_EQ(decodeProfilerHealth(reportOf("{}")), kNoFigures);
    for (const char* info : {"[]", "\"Good\"", "7", "null", "true"}) {
        EXPECT_EQ(decodeProfilerHealth(reportOf(info)), kNoFigures) << info;
    }
}

TEST(DecodeProfilerHealth, TakesTheFirstOfSeveral) {
    const auto info = [](const char* capacity) {
        return std::string(R"({"sppower_battery_health_info":{)"
                           R"("sppower_battery_health_maximum_capacity":")") +
               capacity + "\"}}";
    };
    const std::string tail = "," + info("80%") + "," + info("90%") + "]}";
    EXPECT_EQ(decodeProfilerHealth(
                  R"({"SPPowerDataType":[{},{"sppower_battery_health_info":"none"})" + tail)
                  ->health,
              80);
    // Also where it says nothing.
    EXPECT_EQ(
        decodeProfilerHealth(R"({"SPPowerDataType":[{"sppower_battery_health_info":{}})" + tail),
        kNoFigures);
}

TEST(DecodeProfilerHealth, IsAbsentForWhatIsNoReport) {
    for (const char* text :
         {"", " ", "nothing", "[]", "7", "null", "\"SPPowerDataType\"", "{", "{}", "{}{}",
          R"({"SPPowerDataType":{}})", R"({"SPPowerDataType":"x"})", R"({"SPPowerDataType":null})",
          R"({"SPPowerDataType":[7]})", R"({"SPPowerDataType":[{},[]]})",
          R"({"spPowerDataType":[]})", R"([{"SPPowerDataType":[]}])",
          "{\"SPPowerDataType\":[{\"_name\":\"\xff\"}]}"}) {
        EXPECT_EQ(decodeProfilerHealth(text), std::nullopt) << text;
    }
}

TEST(DecodeProfilerHealth, IsAbsentWhenOneOfTheItemsIsNoObject) {
    EXPECT_EQ(decodeProfilerHealth(R"({"SPPowerDataType":[{"sppower_battery_health_info":)"
                                   R"({"sppower_battery_health":"Good"}},7]})"),
              std::nullopt);
}

TEST(DecodeProfilerHealth, IsAbsentForEveryReportThatWasCutShort) {
    const std::string report(kReport);
    for (std::size_t size = 0; size < report.size(); ++size) {
        EXPECT_EQ(decodeProfilerHealth(report.substr(0, size)), std::nullopt) << size;
    }
}

TEST(DecodeProfilerHealth, SurvivesDeepNesting) {
    EXPECT_EQ(decodeProfilerHealth(std::string(200'000, '[')), std::nullopt);
    EXPECT_EQ(decodeProfilerHealth(R"({"SPPowerDataType":)" + std::string(200'000, '[') +
                                   std::string(200'000, ']') + "}"),
              std::nullopt);
}

class ProfilerHealthTest : public ::testing::Test {
 protected:
    std::optional<HealthReading> read(const std::string& output) {
        using Outcome = platform::PipeRead::Outcome;
        children.clock = 0;
        children.script.output = output;
        children.script.reads = {Outcome::data, Outcome::end};
        return ProfilerHealth(ProcessRunner(children, [this] { return children.clock; }))
            .readHealth();
    }

    platform::testing::ScriptedChildProcesses children;
};

TEST_F(ProfilerHealthTest, AsksTheProfilerAboutPower) {
    children.script.endsAt = 0;
    EXPECT_EQ(read(kReport), (HealthReading{.health = 87, .condition = "Good"}));
    EXPECT_EQ(children.record.path, "/usr/sbin/system_profiler");
    EXPECT_THAT(children.record.arguments, ElementsAre("SPPowerDataType", "-json"));
}

TEST_F(ProfilerHealthTest, IsAbsentWhenTheProfilerFails) {
    children.script.endsAt = 0;
    children.script.status = 1;
    EXPECT_EQ(read(kReport), std::nullopt);
}

TEST_F(ProfilerHealthTest, IsAbsentWhenTheReportIsNone) {
    children.script.endsAt = 0;
    EXPECT_EQ(read("system_profiler: no such data type"), std::nullopt);
}

TEST_F(ProfilerHealthTest, GivesTheProfilerThreeSeconds) {
    children.script.endsAt = 2.97;
    EXPECT_NE(read(kReport), std::nullopt);
    children.script.endsAt = 3.1;
    EXPECT_EQ(read(kReport), std::nullopt);
    EXPECT_NEAR(children.clock, 3, 1e-9);
}

TEST_F(ProfilerHealthTest, GivesTheProfilerAMebibyte) {
    children.script.endsAt = 0;
    const std::string report = kReport;
    const std::string padded = report + std::string(1'048'576 - report.size(), ' ');
    EXPECT_NE(read(padded), std::nullopt);
    EXPECT_EQ(read(padded + " "), std::nullopt);
}

}  // namespace
}  // namespace tarnwick
