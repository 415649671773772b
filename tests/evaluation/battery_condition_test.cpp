// SPDX-License-Identifier: MIT
#include "evaluation/battery_condition.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

TEST(BatteryCondition, GoodFairAndNormalReadNormal) {
    for (const char* raw : {"good", "fair", "normal", "Good", "FAIR", "Normal"}) {
        EXPECT_EQ(batteryConditionDisplayText(raw), "Normal") << raw;
    }
}

TEST(BatteryCondition, EveryWordForAWornBatteryReadsServiceRecommended) {
    for (const char* raw :
         {"poor", "check battery", "service battery", "service recommended", "replace soon",
          "replace now", "permanent battery failure", "Permanent Battery Failure"}) {
        EXPECT_EQ(batteryConditionDisplayText(raw), "Service Recommended") << raw;
    }
}

TEST(BatteryCondition, WhiteSpaceAndLineBreaksAroundTheWordDoNotMatter) {
    EXPECT_EQ(batteryConditionDisplayText(" Fair\n"), "Normal");
    EXPECT_EQ(batteryConditionDisplayText("\t\r\n\xC2\xA0Poor \xE2\x80\xA8"),
              "Service Recommended");
}

TEST(BatteryCondition, MixedCaseReplaceNowReadsServiceRecommended) {
    EXPECT_EQ(batteryConditionDisplayText("Replace Now"), "Service Recommended");
}

TEST(BatteryCondition, EmptyAndUnlistedWordsReadUnknown) {
    for (const char* raw : {"", "  \n", "excellent", "normal.", "not good", "replace  now",
                            "goodfair", "unknown", "\xC3\x84good"}) {
        EXPECT_EQ(batteryConditionDisplayText(raw), "Unknown") << raw;
    }
}

}  // namespace
}  // namespace tarnwick
