// SPDX-License-Identifier: MIT
// The whole way over recorded machines: from the kernel's files to what the panel says.
#include "tests/ui/panel/recorded_panel.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/ui/panel/page_queries.h"

namespace tarnwick::testing {
namespace {

std::vector<std::string> rowTexts(const TopAppsSection& section) {
    std::vector<std::string> texts;
    for (const ProcessRow& row : section.rows()) {
        texts.push_back(row.process.name + " " + row.valueText(row.process));
    }
    return texts;
}

TEST(RecordedPanel, ShowsTheHandheldWhileAGameRuns) {
    RecordedPanel panel("handheld");
    panel.work(0.95, {{1502, 0.75}, {900, 0.125}});
    const Page page = panel.page();

    EXPECT_EQ(block<UsageBar>(page, "bar.cpu").detail, "95.0%");
    EXPECT_EQ(block<UsageBar>(page, "bar.gpu").detail, "88.0%");
    EXPECT_EQ(block<InfoRow>(page, "battery.capacity").value, "94%");
    EXPECT_EQ(
        rowTexts(block<TopAppsSection>(page, "topCPU")),
        (std::vector<std::string>{"Dungeon of Doom 75.0%", "gamescope 12.5%", "systemd 0.0%"}));
}

TEST(RecordedPanel, ShowsTheWorkstationWhileItCompiles) {
    RecordedPanel panel("workstation");
    panel.work(1, {{4410, 0.5}, {2200, 0.25}, {4475, 0.125}});
    const Page page = panel.page();

    EXPECT_EQ(block<UsageBar>(page, "bar.cpu").detail, "100.0%");
    EXPECT_EQ(block<UsageBar>(page, "bar.gpu").detail, "37.0%");
    EXPECT_EQ(block<CaptionText>(page, "battery.state").text, "Battery data not available");
    EXPECT_EQ(rowTexts(block<TopAppsSection>(page, "topCPU")),
              (std::vector<std::string>{"cc1plus 50.0%", "Blender 25.0%", "Code - OSS 12.5%"}));
}

TEST(RecordedPanel, ShowsNoTopAppsWhileAllIsCalm) {
    RecordedPanel panel("handheld");
    panel.work(0.05, {{1502, 0.05}});
    EXPECT_EQ(block<UsageBar>(panel.page(), "bar.cpu").detail, "5.0%");
    EXPECT_FALSE(contains(panel.page(), "topCPU"));
}

TEST(RecordedPanel, ShowsNoGraphicsThatTheServerHasNot) {
    RecordedPanel panel("server");
    panel.work(0.5, {});
    EXPECT_EQ(block<UsageBar>(panel.page(), "bar.cpu").detail, "50.0%");
    EXPECT_FALSE(contains(panel.page(), "bar.gpu"));
}

}  // namespace
}  // namespace tarnwick::testing
