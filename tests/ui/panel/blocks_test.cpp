// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include "ui/panel/page.h"
#include "ui/panel/spoken_text.h"

namespace tarnwick {
namespace {

std::string pid(const AppProcessInfo& process) {
    return std::to_string(process.id);
}

double fraction(double value) {
    return UsageBar{.title = "", .icon = "", .value = value, .detail = ""}.fraction();
}

TEST(UsageBar, IsFilledByItsShareOfOneHundred) {
    EXPECT_EQ(fraction(0), 0);
    EXPECT_DOUBLE_EQ(fraction(42), 0.42);
    EXPECT_EQ(fraction(100), 1);
}

TEST(UsageBar, IsFullAboveOneHundred) {
    EXPECT_EQ(fraction(100.04), 1);
    EXPECT_EQ(fraction(1e300), 1);
}

TEST(UsageBar, IsEmptyForWhatIsNoShare) {
    EXPECT_EQ(fraction(-1), 0);
    EXPECT_EQ(fraction(std::numeric_limits<double>::quiet_NaN()), 0);
    EXPECT_EQ(fraction(std::numeric_limits<double>::infinity()), 0);
    EXPECT_EQ(fraction(-std::numeric_limits<double>::infinity()), 0);
}

TEST(TopAppsSection, HasARowForEachProcessInOrder) {
    const TopAppsSection section{"Top", {{.id = 2, .name = "b"}, {.id = 1, .name = "a"}}, pid};
    const std::vector<ProcessRow> rows = section.rows();
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].process.name, "b");
    EXPECT_EQ(rows[0].valueText(rows[0].process), "2");
    EXPECT_EQ(rows[1].process.name, "a");
}

TEST(TopAppsSection, SaysThatItIsCollecting) {
    EXPECT_EQ(TopAppsSection::kEmptyText, "Collecting data...");
}

TEST(Panel, IsThreeHundredAndTwentyPointsWide) {
    EXPECT_EQ(kPanelWidth, 320);
    EXPECT_EQ(kBlockSpacing, 12);
}

TEST(SpokenText, NamesABarItsValueAndItsLevel) {
    UsageBar bar{"CPU", "cpu", 42, "42.0%", Tint::green};
    EXPECT_EQ(spokenText(bar), "CPU, 42.0%, normal");
    bar.tint = Tint::yellow;
    EXPECT_EQ(spokenText(bar), "CPU, 42.0%, elevated");
    bar.tint = Tint::red;
    EXPECT_EQ(spokenText(bar), "CPU, 42.0%, high");
    bar.tint = Tint::gray;
    EXPECT_EQ(spokenText(bar), "CPU, 42.0%");
}

TEST(SpokenText, ReadsRowsFromLeadingToTrailing) {
    EXPECT_EQ(spokenText(StatusRow{"Uptime", "clock", "3d 4h 12m", false}), "Uptime, 3d 4h 12m");
    EXPECT_EQ(spokenText(InfoRow{"Cycles", "412"}), "Cycles, 412");
    EXPECT_EQ(spokenText(NoticeRow{"x", Tint::orange, "Low storage"}), "Low storage");
    EXPECT_EQ(spokenText(CaptionText{"Checking"}), "Checking");
    EXPECT_EQ(spokenText(SectionHeader{"Battery Health", "battery.100"}), "Battery Health");
    EXPECT_EQ(spokenText(PanelHeader{"Tarnwick", {}, "All is well."}), "Tarnwick, All is well.");
}

TEST(SpokenText, LeavesTheRowsOfListsToThemselves) {
    const TopAppsSection section{"Top", {{.id = 2, .name = "b"}, {.id = 1, .name = "a"}}, pid};
    EXPECT_EQ(spokenText(section), "Top");
    EXPECT_EQ(spokenText(TopAppsList{section.processes, 0, pid}), "");
}

TEST(TopAppsList, HasARowForEachProcessInOrder) {
    const TopAppsList list{{{.id = 2, .name = "b"}, {.id = 1, .name = "a"}}, 12, pid};
    const std::vector<ProcessRow> rows = list.rows();
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].process.name, "b");
    EXPECT_EQ(rows[1].valueText(rows[1].process), "1");
}

TEST(ProcessRow, IsEqualToOneThatSaysTheSame) {
    const AppProcessInfo process{.id = 2, .name = "b"};
    const auto two = [](const AppProcessInfo&) { return std::string("2"); };
    EXPECT_EQ((ProcessRow{process, pid}), (ProcessRow{process, two}));
    EXPECT_NE((ProcessRow{process, pid}),
              (ProcessRow{process, [](const AppProcessInfo&) { return std::string("3"); }}));
    EXPECT_NE((ProcessRow{process, pid}), (ProcessRow{{.id = 2, .name = "c"}, pid}));
    EXPECT_NE((TopAppsList{{process}, 0, pid}), (TopAppsList{{process}, 1, pid}));
    EXPECT_NE((TopAppsSection{"Top", {process}, pid}), (TopAppsSection{"Tip", {process}, pid}));
}

TEST(SpokenText, ReadsTheBlocksOfDetailPages) {
    EXPECT_EQ(spokenText(DetailHeader{"Performance", {}, {}}), "Performance");
    EXPECT_EQ(spokenText(GroupTitle{"Usage Trends"}), "Usage Trends");
    EXPECT_EQ(spokenText(TrendRow{"CPU", "42%", {1, 2}, Tint::yellow}), "CPU, 42%, elevated");
}

TEST(SpokenText, IsEmptyForDecorationAndForWhatOnlyHoldsButtons) {
    EXPECT_EQ(spokenText(NavigationButton{{"More", "", PanelAction::showMemoryDetail, true}}), "");
    EXPECT_EQ(spokenText(PanelDivider{}), "");
    EXPECT_EQ(spokenText(FooterRow{{PanelButton{"Quit", "", PanelAction::quit, true}}}), "");
}

}  // namespace
}  // namespace tarnwick
