// SPDX-License-Identifier: MIT
#include "ui/panel/memory_detail_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/ui/panel/home_fixtures.h"
#include "tests/ui/panel/page_queries.h"

namespace tarnwick {
namespace {

using testing::block;
using ::testing::ElementsAre;
using testing::kGiB;

class MemoryDetailPageTest : public ::testing::Test {
 protected:
    Page page() const { return memoryDetailPage(inputs, formatter); }
    std::vector<std::string> processTexts() const {
        std::vector<std::string> texts;
        for (const ProcessRow& row : block<TopAppsList>(page(), "topMemory.list").rows()) {
            texts.push_back(row.process.name + ": " + row.valueText(row.process));
        }
        return texts;
    }

    MemoryDetailInputs inputs{.memoryInfo = {.total = 16 * kGiB},
                              .topMemoryProcesses = {},
                              .enabledActions = {PanelAction::refresh, PanelAction::goBack}};
    testing::SpellingByteCountFormatter formatter;
};

TEST_F(MemoryDetailPageTest, IsOrderedFromTopToBottom) {
    EXPECT_THAT(
        testing::ids(page()),
        ElementsAre("header", "pressure", "divider.breakdown", "breakdown", "breakdown.physical",
                    "breakdown.used", "breakdown.cached", "breakdown.swap", "breakdown.app",
                    "breakdown.wired", "breakdown.compressed", "divider.topMemory", "topMemory",
                    "topMemory.list"));
}

TEST_F(MemoryDetailPageTest, HeaderLeadsBackAndRefreshes) {
    EXPECT_EQ(block<DetailHeader>(page(), "header"),
              (DetailHeader{"Memory Details",
                            {"Back", "chevron.left", PanelAction::goBack, true},
                            {"Refresh", "", PanelAction::refresh, true}}));
}

TEST_F(MemoryDetailPageTest, ShowsTheEstimatedPressure) {
    EXPECT_EQ(block<InfoRow>(page(), "pressure"), (InfoRow{"Estimated Pressure", "High"}));
    inputs.memoryInfo.free = 15 * kGiB;
    EXPECT_EQ(block<InfoRow>(page(), "pressure").value, "Good");
}

TEST_F(MemoryDetailPageTest, BreaksTheMemoryDown) {
    inputs.memoryInfo = {.total = 1,
                         .used = 2,
                         .free = 3,
                         .app = 4,
                         .wired = 5,
                         .compressed = 6,
                         .cached = 7,
                         .swapUsed = 8,
                         .swapTotal = 9};
    const Page shown = page();
    EXPECT_EQ(block<GroupTitle>(shown, "breakdown").title, "Memory Breakdown");
    const auto row = [&shown](const char* id) { return block<InfoRow>(shown, id); };
    EXPECT_EQ(row("breakdown.physical"), (InfoRow{"Physical Memory", "1 B memory"}));
    EXPECT_EQ(row("breakdown.used"), (InfoRow{"Memory Used", "2 B memory"}));
    EXPECT_EQ(row("breakdown.cached"), (InfoRow{"Cached Files", "7 B memory"}));
    EXPECT_EQ(row("breakdown.swap"), (InfoRow{"Swap Used", "8 B memory"}));
    EXPECT_EQ(row("breakdown.app"), (InfoRow{"App Memory", "4 B memory"}));
    EXPECT_EQ(row("breakdown.wired"), (InfoRow{"Wired Memory", "5 B memory"}));
    EXPECT_EQ(row("breakdown.compressed"), (InfoRow{"Compressed", "6 B memory"}));
}

TEST_F(MemoryDetailPageTest, RowsStandCloserThanBlocks) {
    for (const PageItem& item : page()) {
        const bool isRow = item.id.rfind("breakdown.", 0) == 0 || item.id == "topMemory.list";
        EXPECT_EQ(item.spaceAbove, item.id == "header" ? 0 : isRow ? 6 : 12) << item.id;
    }
}

TEST_F(MemoryDetailPageTest, ListsProcessesWithTheirShares) {
    inputs.topMemoryProcesses = {{.id = 1, .name = "Firefox", .memoryUsage = 2 * kGiB},
                                 {.id = 2, .name = "sh", .memoryUsage = 1}};
    EXPECT_EQ(block<GroupTitle>(page(), "topMemory").title, "What's Using Memory?");
    EXPECT_THAT(processTexts(),
                ElementsAre("Firefox: 12.5% (2147483648 B memory)", "sh: 0.0% (1 B memory)"));
}

TEST_F(MemoryDetailPageTest, SharesOfNoMemoryAreNone) {
    inputs.memoryInfo.total = 0;
    inputs.topMemoryProcesses = {{.id = 1, .name = "Firefox", .memoryUsage = 2}};
    EXPECT_THAT(processTexts(), ElementsAre("Firefox: 0.0% (2 B memory)"));
    EXPECT_EQ(block<InfoRow>(page(), "pressure").value, "Good");
}

TEST_F(MemoryDetailPageTest, SaysThatItIsCollecting) {
    EXPECT_TRUE(block<TopAppsList>(page(), "topMemory.list").rows().empty());
    EXPECT_EQ(TopAppsList::kEmptyText, "Collecting data...");
}

TEST_F(MemoryDetailPageTest, PagesAreEqualWhenTheySayTheSame) {
    inputs.topMemoryProcesses = {{.id = 1, .name = "Firefox", .memoryUsage = kGiB}};
    const Page before = page();
    EXPECT_EQ(page(), before);
    inputs.memoryInfo.total = 8 * kGiB;
    const Page after = page();
    EXPECT_NE(block<TopAppsList>(after, "topMemory.list"),
              block<TopAppsList>(before, "topMemory.list"));
}

}  // namespace
}  // namespace tarnwick
