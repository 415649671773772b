// SPDX-License-Identifier: MIT
#include "evaluation/menu_bar_label.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

const MetricDisplaySummary kSummary{MetricSeverity::info, "CPU 85%",
                                    "CPU usage is at 85%, above the normal threshold."};

TEST(MenuBarLabel, AdvancedModeShowsIconAndText) {
    const MenuBarLabel label = menuBarLabel(kSummary, "advanced");
    EXPECT_EQ(label.symbol, "info.circle.fill");
    EXPECT_EQ(label.tint, Tint::yellow);
    EXPECT_EQ(label.text, "CPU 85%");
    EXPECT_EQ(label.accessibilityLabel, "Tarnwick status: CPU 85%");
}

TEST(MenuBarLabel, IconOnlyModeDrawsNoTextButStillTellsIt) {
    const MenuBarLabel label = menuBarLabel(kSummary, "iconOnly");
    EXPECT_EQ(label.symbol, "info.circle.fill");
    EXPECT_FALSE(label.text);
    EXPECT_EQ(label.accessibilityLabel, "Tarnwick status: CPU 85%");
}

TEST(MenuBarLabel, EveryOtherModeTextShowsTheText) {
    for (const char* mode : {"", "icononly", "IconOnly", "iconOnly ", "compact"}) {
        EXPECT_EQ(menuBarLabel(kSummary, mode).text, "CPU 85%") << '"' << mode << '"';
    }
}

TEST(MenuBarLabel, EachSeverityHasItsIconAndTint) {
    const MenuBarLabel ok = menuBarLabel({MetricSeverity::ok, "Loading...", ""}, "advanced");
    EXPECT_EQ(ok.symbol, "checkmark.circle.fill");
    EXPECT_EQ(ok.tint, Tint::green);
    const MenuBarLabel warning = menuBarLabel({MetricSeverity::warning, "RAM 96%", ""}, "advanced");
    EXPECT_EQ(warning.symbol, "exclamationmark.triangle.fill");
    EXPECT_EQ(warning.tint, Tint::red);
}

TEST(MenuBarLabel, AnEmptyTextIsShownAsText) {
    const MenuBarLabel label = menuBarLabel({MetricSeverity::ok, "", ""}, "advanced");
    EXPECT_EQ(label.text, "");
    EXPECT_EQ(label.accessibilityLabel, "Tarnwick status: ");
}

}  // namespace
}  // namespace tarnwick
