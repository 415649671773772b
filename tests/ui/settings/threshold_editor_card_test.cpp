// SPDX-License-Identifier: MIT
#include "ui/settings/threshold_editor_card.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace tarnwick {
namespace {

TEST(ThresholdValuePill, SaysTheTitleAndTheWholePercentage) {
    EXPECT_EQ((ThresholdValuePill{"Normal", 70, Tint::yellow}.text()), "Normal 70%");
    EXPECT_EQ((ThresholdValuePill{"High", 100, Tint::red}.text()), "High 100%");
}

TEST(ThresholdValuePill, CutsTowardZero) {
    EXPECT_EQ((ThresholdValuePill{"High", 89.99, Tint::red}.text()), "High 89%");
    EXPECT_EQ((ThresholdValuePill{"High", -3.9, Tint::red}.text()), "High -3%");
    EXPECT_EQ((ThresholdValuePill{"High", -0.9, Tint::red}.text()), "High 0%");
}

TEST(ThresholdValuePill, CopesWithWhatNobodyCouldHaveSet) {
    EXPECT_EQ(wholePercentText(std::nan("")), "0");
    EXPECT_EQ(wholePercentText(1e300), "9223372036854775807");
    EXPECT_EQ(wholePercentText(9223372036854775808.0), "9223372036854775807");
    EXPECT_EQ(wholePercentText(-1e300), "-9223372036854775808");
    EXPECT_EQ(wholePercentText(-9223372036854775808.0), "-9223372036854775808");
    EXPECT_EQ(wholePercentText(std::numeric_limits<double>::infinity()), "9223372036854775807");
    EXPECT_EQ(wholePercentText(1234567), "1234567");
}

TEST(ThresholdEditorCard, HasAPillOfEachThreshold) {
    const ThresholdEditorCard card{JudgedMetric::cpu, "CPU Usage", "cpu", 80.5, 90,
                                   {10, 99},          {11, 100}};
    const auto pills = card.pills();
    EXPECT_EQ(pills[0].text(), "Normal 80%");
    EXPECT_EQ(pills[0].color, Tint::yellow);
    EXPECT_EQ(pills[1].text(), "High 90%");
    EXPECT_EQ(pills[1].color, Tint::red);
}

TEST(ThresholdEditors, AreFourInTheirOrderWithTheirRanges) {
    struct Expected {
        JudgedMetric metric;
        const char* title;
        const char* icon;
        ClosedRange normal;
        ClosedRange high;
    };
    const Expected expected[] = {
        {JudgedMetric::cpu, "CPU Usage", "cpu", {10, 99}, {11, 100}},
        {JudgedMetric::gpu, "GPU Usage", "display.2", {10, 99}, {11, 100}},
        {JudgedMetric::memory, "Memory Usage", "memorychip", {10, 99}, {11, 100}},
        {JudgedMetric::storage, "Storage Usage", "internaldrive", {50, 99}, {51, 100}},
    };
    ASSERT_EQ(kThresholdEditors.size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        EXPECT_EQ(kThresholdEditors[i].metric, expected[i].metric);
        EXPECT_EQ(kThresholdEditors[i].title, expected[i].title);
        EXPECT_EQ(kThresholdEditors[i].icon, expected[i].icon);
        EXPECT_EQ(kThresholdEditors[i].normalRange, expected[i].normal);
        EXPECT_EQ(kThresholdEditors[i].highRange, expected[i].high);
    }
}

}  // namespace
}  // namespace tarnwick
