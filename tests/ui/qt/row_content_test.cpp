// SPDX-License-Identifier: MIT
#include "ui/qt/row_content.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ui/qt/grid.h"

namespace tarnwick::qt {
namespace {

const Theme& theme() {
    static const Theme light;
    return light;
}

RowContent::Symbol symbol(const char* name, const QColor& colour, int size = grid::kSymbolSize) {
    return {name, colour, size};
}

struct Case {
    const char* name;
    RowContent content;
    RowContent expected;
};

std::ostream& operator<<(std::ostream& out, const Case& each) {
    return out << each.name;
}

std::vector<Case> cases() {
    const QColor text = theme().color(ColorRole::text);
    const QColor secondary = theme().color(ColorRole::secondaryText);
    return {
        {"status",
         rowContent(StatusRow{"Uptime", "clock", "3h 2m", false}, theme()),
         {symbol("clock", secondary),
          {"Uptime", FontRole::subheadline, ColorRole::secondaryText},
          {"3h 2m", FontRole::caption, ColorRole::secondaryText}}},
        {"prominent status",
         rowContent(StatusRow{"Thermals", "thermometer", "Nominal", true}, theme()),
         {symbol("thermometer", secondary),
          {"Thermals", FontRole::subheadline, ColorRole::secondaryText},
          {"Nominal", FontRole::captionMedium, ColorRole::text}}},
        {"notice",
         rowContent(NoticeRow{"arrow.clockwise.circle.fill", Tint::orange, "Restart"}, theme()),
         {symbol("arrow.clockwise.circle.fill", theme().color(Tint::orange), 14),
          {"Restart", FontRole::caption, ColorRole::secondaryText},
          {}}},
        {"bar",
         rowContent(UsageBar{"CPU", "cpu", 42, "42.0%", Tint::green}, theme()),
         {symbol("cpu", text),
          {"CPU", FontRole::subheadline, ColorRole::text},
          {"42.0%", FontRole::caption, ColorRole::secondaryText}}},
        {"elevated bar",
         rowContent(UsageBar{"CPU", "cpu", 70, "70.0%", Tint::yellow}, theme()),
         {symbol("cpu", text),
          {"CPU", FontRole::subheadline, ColorRole::text},
          {"70.0%", FontRole::caption, ColorRole::secondaryText},
          symbol("info.circle.fill", theme().color(Tint::yellow), grid::kMarkSize)}},
        {"high bar",
         rowContent(UsageBar{"CPU", "cpu", 99, "99.0%", Tint::red}, theme()),
         {symbol("cpu", text),
          {"CPU", FontRole::subheadline, ColorRole::text},
          {"99.0%", FontRole::caption, ColorRole::secondaryText},
          symbol("exclamationmark.triangle.fill", theme().color(Tint::red), grid::kMarkSize)}},
        {"bar without data",
         rowContent(UsageBar{"Storage", "internaldrive", 0, "Loading...", Tint::gray}, theme()),
         {symbol("internaldrive", text),
          {"Storage", FontRole::subheadline, ColorRole::text},
          {"Loading...", FontRole::caption, ColorRole::secondaryText}}},
        {"header of the battery",
         rowContent(SectionHeader{"Battery Health", "battery.100"}, theme()),
         {symbol("battery.100", text),
          {"Battery Health", FontRole::subheadline, ColorRole::text},
          {}}},
        {"caption",
         rowContent(CaptionText{"Waiting for the next sample..."}, theme()),
         {{}, {"Waiting for the next sample...", FontRole::caption, ColorRole::secondaryText}, {}}},
        {"label and value",
         rowContent(InfoRow{"Cycles", "120"}, theme()),
         {{},
          {"Cycles", FontRole::caption, ColorRole::secondaryText},
          {"120", FontRole::captionMedium, ColorRole::text}}},
        {"title of a group",
         rowContent(GroupTitle{"Usage Trends"}, theme()),
         {{}, {"Usage Trends", FontRole::subheadlineMedium, ColorRole::text}, {}}},
        {"process",
         rowContent(ProcessRow{{.id = 1, .name = "make", .cpuUsage = 3},
                               [](const AppProcessInfo&) { return std::string("3.0%"); }},
                    theme()),
         {{},
          {"make", FontRole::caption, ColorRole::text},
          {"3.0%", FontRole::caption, ColorRole::secondaryText}}},
    };
}

TEST(RowContent, SetsEveryTextInItsFontAndColour) {
    for (const Case& each : cases()) {
        SCOPED_TRACE(each);
        EXPECT_EQ(each.content.leading.text, each.expected.leading.text);
        EXPECT_EQ(each.content.leading.font, each.expected.leading.font);
        EXPECT_EQ(each.content.leading.colour, each.expected.leading.colour);
        EXPECT_EQ(each.content.trailing.text, each.expected.trailing.text);
        if (!each.expected.trailing.text.isEmpty()) {
            EXPECT_EQ(each.content.trailing.font, each.expected.trailing.font);
            EXPECT_EQ(each.content.trailing.colour, each.expected.trailing.colour);
        }
        EXPECT_TRUE(each.content.symbol == each.expected.symbol);
        EXPECT_TRUE(each.content.mark == each.expected.mark);
    }
}

// Medium is heavier than plain, and a caption smaller than what it explains.
TEST(RowContent, FontsDifferAsTheirRolesDo) {
    const auto font = [](FontRole role) { return theme().style(role).font(); };
    EXPECT_GT(font(FontRole::captionMedium).weight(), font(FontRole::caption).weight());
    EXPECT_EQ(font(FontRole::captionMedium).pointSizeF(), font(FontRole::caption).pointSizeF());
    EXPECT_GT(font(FontRole::subheadlineMedium).weight(), font(FontRole::subheadline).weight());
    EXPECT_LT(font(FontRole::caption).pointSizeF(), font(FontRole::subheadline).pointSizeF());
    EXPECT_LT(font(FontRole::subheadline).pointSizeF(), font(FontRole::headline).pointSizeF());
    EXPECT_GT(font(FontRole::headline).weight(), font(FontRole::subheadline).weight());
}

}  // namespace
}  // namespace tarnwick::qt
