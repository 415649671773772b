// SPDX-License-Identifier: MIT
#include "ui/panel/menu_bar_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/core/stats_manager_fixture.h"
#include "tests/ui/panel/home_fixtures.h"
#include "tests/ui/panel/page_queries.h"

namespace tarnwick {
namespace {

using testing::block;
using testing::contains;
using ::testing::ElementsAre;

class MenuBarViewTest : public testing::StatsManagerTest {
 protected:
    MenuBarViewTest() : manager(makeSettled()) {
        view = std::make_unique<MenuBarView>(*manager, targets(),
                                             MenuBarViewEnvironment{manual, formatter});
        view->setPageObserver([this](const Page& page) { pages.push_back(page); });
    }

    PanelTargets targets() {
        return {.showSettings = {}, .openActivityMonitor = {}, .quit = [this] {
                    performed.push_back("quit");
                }};
    }

    std::unique_ptr<StatsManager> manager;
    testing::SpellingByteCountFormatter formatter;
    std::unique_ptr<MenuBarView> view;
    /// What the observer was told.
    std::vector<Page> pages;
    std::vector<std::string> performed;
};

TEST_F(MenuBarViewTest, StartsOnTheHomePage) {
    EXPECT_EQ(view->activeTab(), MenuTab::home);
    EXPECT_EQ(&view->statsManager(), manager.get());
    EXPECT_EQ(static_cast<int>(MenuTab::home), 0);
    EXPECT_EQ(static_cast<int>(MenuTab::memoryDetail), 1);
    EXPECT_EQ(static_cast<int>(MenuTab::performanceDetail), 2);
}

TEST_F(MenuBarViewTest, PageShowsWhatTheManagerPublishes) {
    manager->thermalState.set(2);
    BatteryInfo info = *manager->batteryInfo;
    info.cycleCount = 412;
    manager->batteryInfo.set(info);
    const Page page = view->page();
    EXPECT_EQ(block<PanelHeader>(page, "header").summary, manager->displaySummary().popoverText);
    EXPECT_EQ(block<UsageBar>(page, "bar.cpu").detail, "11.0%");
    EXPECT_EQ(block<UsageBar>(page, "bar.gpu").detail, "12.0%");
    EXPECT_EQ(block<UsageBar>(page, "bar.memory").detail, "26 B memory / 200 B memory (13%)");
    EXPECT_EQ(block<UsageBar>(page, "bar.storage").title, "Storage (Disk)");
    EXPECT_EQ(block<UsageBar>(page, "bar.storage").detail, "140 B file / 1000 B file");
    EXPECT_EQ(block<StatusRow>(page, "uptime").value, "1m");
    EXPECT_EQ(block<StatusRow>(page, "thermals").value, "Serious");
    EXPECT_EQ(block<InfoRow>(page, "battery.cycles").value, "412");
}

TEST_F(MenuBarViewTest, PageIsLoadingBeforeAnythingWasMeasured) {
    const auto fresh = make();
    const MenuBarView early(*fresh, {}, {manual, formatter});
    const Page page = early.page();
    EXPECT_EQ(block<PanelHeader>(page, "header").summary, "Collecting system data...");
    EXPECT_EQ(block<UsageBar>(page, "bar.storage").detail, "Loading...");
    EXPECT_EQ(block<CaptionText>(page, "battery.state").text, "Checking battery\u2026");
}

TEST_F(MenuBarViewTest, ThresholdsAndReminderAreReadForEachPage) {
    manager->systemInfo.set({604800});
    EXPECT_EQ(block<UsageBar>(view->page(), "bar.cpu").tint, Tint::green);
    settings.setCPUNormal(5);
    settings.setCPUHigh(11);
    settings.setRemindRestartAfterWeek(false);
    EXPECT_FALSE(contains(view->page(), "restart"));
    settings.setRemindRestartAfterWeek(true);
    const Page page = view->page();
    EXPECT_EQ(block<UsageBar>(page, "bar.cpu").tint, Tint::red);
    EXPECT_TRUE(contains(page, "restart"));
    EXPECT_TRUE(contains(page, "topCPU"));
}

TEST_F(MenuBarViewTest, TopAppsAreTheManagersListByProcessorUse) {
    settings.setCPUNormal(5);
    settings.setCPUHigh(11);
    view->appear();
    settle();
    const Page page = view->page();
    const auto& section = block<TopAppsSection>(page, "topCPU");
    ASSERT_EQ(section.processes.size(), 1U);
    EXPECT_EQ(section.processes[0].name, "busy");
}

TEST_F(MenuBarViewTest, AppearingAndDisappearingReachTheManagerOnce) {
    view->appear();
    EXPECT_TRUE(manager->isPopoverVisible());
    settle();
    takeCalls();
    view->appear();
    settle();
    EXPECT_TRUE(calls.empty());

    view->disappear();
    EXPECT_FALSE(manager->isPopoverVisible());
    view->disappear();
    EXPECT_FALSE(view->isVisible());
}

TEST_F(MenuBarViewTest, AppearsWithThePageOfThatMoment) {
    EXPECT_EQ(view->appear(), view->page());
    settle();
    manager->cpuInfo.set(testing::makeCPU(50, 4));
    manual.runMain();
    ASSERT_FALSE(pages.empty());
    EXPECT_EQ(view->appear(), pages.back());
}

TEST_F(MenuBarViewTest, ManyChangesAreOneNewPage) {
    view->appear();
    settle();
    pages.clear();
    const std::size_t before = manual.asyncCount();
    manager->cpuInfo.set(testing::makeCPU(50, 4));
    manager->memoryInfo.set({.total = 200, .used = 100});
    manager->systemInfo.set({120});
    EXPECT_EQ(manual.asyncCount(), before + 1);
    EXPECT_TRUE(pages.empty());
    manual.runMain();
    ASSERT_EQ(pages.size(), 1U);
    EXPECT_EQ(block<UsageBar>(pages[0], "bar.cpu").detail, "50.0%");
    EXPECT_EQ(block<UsageBar>(pages[0], "bar.memory").value, 50);
    EXPECT_EQ(block<StatusRow>(pages[0], "uptime").value, "2m");
}

TEST_F(MenuBarViewTest, AChangeOfASettingAloneIsANewPage) {
    manager->systemInfo.set({604800});
    settings.setRemindRestartAfterWeek(false);
    view->appear();
    settle();
    pages.clear();
    settings.setCPUNormal(5);
    settings.setCPUHigh(11);
    settings.setRemindRestartAfterWeek(true);
    EXPECT_TRUE(pages.empty());
    manual.runMain();
    ASSERT_EQ(pages.size(), 1U);
    EXPECT_EQ(block<UsageBar>(pages[0], "bar.cpu").tint, Tint::red);
    EXPECT_EQ(block<PanelHeader>(pages[0], "header").summary,
              "CPU usage is at 11%, above the high threshold.");
    EXPECT_TRUE(contains(pages[0], "restart"));
}

TEST_F(MenuBarViewTest, LaterChangesAreAnnouncedAgain) {
    view->appear();
    settle();
    pages.clear();
    for (const double usage : {20.0, 30.0}) {
        manager->cpuInfo.set(testing::makeCPU(usage, 4));
        manual.runMain();
    }
    EXPECT_EQ(pages.size(), 2U);
}

TEST_F(MenuBarViewTest, AChangeThatDoesNotShowIsNotAnnounced) {
    view->appear();
    settle();
    pages.clear();
    manager->cpuInfo.set(*manager->cpuInfo);
    manager->networkInfo.set({.downloadBytesPerSecond = 12, .hasSample = true});
    manual.runMain();
    EXPECT_TRUE(pages.empty());
}

TEST_F(MenuBarViewTest, CostsNothingWhileHidden) {
    const std::size_t before = manual.asyncCount();
    manager->cpuInfo.set(testing::makeCPU(50, 4));
    settings.setCPUHigh(95);
    EXPECT_EQ(manual.asyncCount(), before);
    view->appear();
    view->disappear();
    settle();
    const std::size_t after = manual.asyncCount();
    manager->cpuInfo.set(testing::makeCPU(60, 4));
    settings.setCPUHigh(96);
    EXPECT_EQ(manual.asyncCount(), after);
    EXPECT_TRUE(pages.empty());
}

TEST_F(MenuBarViewTest, AnnouncesNothingAfterItDisappeared) {
    view->appear();
    settle();
    pages.clear();
    manager->cpuInfo.set(testing::makeCPU(50, 4));
    view->disappear();
    settle();
    EXPECT_TRUE(pages.empty());
}

TEST_F(MenuBarViewTest, MayGoWhileAChangeWaits) {
    view->appear();
    settle();
    pages.clear();
    manager->cpuInfo.set(testing::makeCPU(50, 4));
    view.reset();
    manual.runMain();
    manager->cpuInfo.set(testing::makeCPU(60, 4));
    EXPECT_TRUE(pages.empty());
}

TEST_F(MenuBarViewTest, RefreshMeasuresEverythingAnew) {
    takeCalls();
    view->perform(PanelAction::refresh);
    settle();
    EXPECT_EQ(count("health forced"), 1U);
    EXPECT_GE(count("cpu"), 1U);
}

TEST_F(MenuBarViewTest, ActionsRunTheirTargets) {
    std::vector<std::string> ran;
    const auto target = [&ran](const char* name) { return [&ran, name] { ran.push_back(name); }; };
    MenuBarView full(*manager,
                     {.showSettings = target("settings"),
                      .openActivityMonitor = target("monitor"),
                      .quit = target("quit")},
                     {manual, formatter});
    for (const PanelAction action :
         {PanelAction::showSettings, PanelAction::openActivityMonitor, PanelAction::quit}) {
        EXPECT_TRUE(full.canPerform(action));
        full.perform(action);
    }
    EXPECT_THAT(ran, ElementsAre("settings", "monitor", "quit"));
    const Page page = full.page();
    EXPECT_TRUE(block<PanelHeader>(page, "header").buttons[0].isEnabled);
    EXPECT_TRUE(block<NavigationButton>(page, "navigation.memory").button.isEnabled);
}

TEST_F(MenuBarViewTest, AMissingTargetDisablesItsButtonAndDoesNothing) {
    const Page page = view->page();
    EXPECT_FALSE(block<PanelHeader>(page, "header").buttons[0].isEnabled);
    EXPECT_TRUE(block<PanelHeader>(page, "header").buttons[1].isEnabled);
    EXPECT_FALSE(block<FooterRow>(page, "footer").buttons[0].isEnabled);
    EXPECT_TRUE(block<FooterRow>(page, "footer").buttons[1].isEnabled);
    EXPECT_FALSE(view->canPerform(PanelAction::showSettings));
    view->perform(PanelAction::showSettings);
    EXPECT_TRUE(performed.empty());
    view->perform(PanelAction::quit);
    EXPECT_THAT(performed, ElementsAre("quit"));
}

TEST_F(MenuBarViewTest, NavigationLeadsToTheDetailPagesAndBack) {
    view->appear();
    settle();
    pages.clear();
    view->perform(PanelAction::showMemoryDetail);
    EXPECT_EQ(view->activeTab(), MenuTab::memoryDetail);
    ASSERT_EQ(pages.size(), 1U);
    EXPECT_EQ(block<DetailHeader>(pages.back(), "header").title, "Memory Details");
    view->perform(PanelAction::goBack);
    EXPECT_EQ(view->activeTab(), MenuTab::home);
    ASSERT_EQ(pages.size(), 2U);
    EXPECT_EQ(block<PanelHeader>(pages.back(), "header").title, "Tarnwick");
    view->perform(PanelAction::showPerformanceDetail);
    EXPECT_EQ(view->activeTab(), MenuTab::performanceDetail);
    ASSERT_EQ(pages.size(), 3U);
    EXPECT_EQ(block<DetailHeader>(pages.back(), "header").title, "Performance");
}

TEST_F(MenuBarViewTest, EscapeLeadsBackFromADetailPageAndNowhereFromTheHomePage) {
    view->appear();
    for (const PanelAction way :
         {PanelAction::showMemoryDetail, PanelAction::showPerformanceDetail}) {
        view->perform(way);
        pages.clear();
        EXPECT_TRUE(view->cancel());
        EXPECT_EQ(view->activeTab(), MenuTab::home);
        EXPECT_THAT(pages, ElementsAre(view->page()));
        EXPECT_FALSE(view->cancel());
        EXPECT_EQ(pages.size(), 1U);
    }
}

TEST_F(MenuBarViewTest, TheKeyboardGoesOnFromTheWayBackAndFromTheButtonThatLedAway) {
    view->appear();
    EXPECT_EQ(view->entryAction(), std::nullopt);
    for (const PanelAction way :
         {PanelAction::showMemoryDetail, PanelAction::showPerformanceDetail}) {
        view->perform(way);
        EXPECT_EQ(view->entryAction(), PanelAction::goBack);
        view->perform(PanelAction::goBack);
        EXPECT_EQ(view->entryAction(), way);
    }
    view->disappear();
    view->appear();
    EXPECT_EQ(view->entryAction(), std::nullopt);
}

TEST_F(MenuBarViewTest, OpensWithTheHomePageAgain) {
    view->appear();
    view->perform(PanelAction::showPerformanceDetail);
    view->disappear();
    EXPECT_EQ(view->activeTab(), MenuTab::home);
    view->appear();
    EXPECT_TRUE(contains(view->page(), "bar.cpu"));
}

TEST_F(MenuBarViewTest, MemoryPageShowsWhatTheManagerPublishes) {
    manager->topMemoryProcesses.set({{.id = 5, .name = "big", .memoryUsage = 100}});
    view->perform(PanelAction::showMemoryDetail);
    const Page page = view->page();
    EXPECT_EQ(block<InfoRow>(page, "breakdown.physical").value, "200 B memory");
    EXPECT_EQ(block<InfoRow>(page, "breakdown.used").value, "26 B memory");
    const std::vector<ProcessRow> rows = block<TopAppsList>(page, "topMemory.list").rows();
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].valueText(rows[0].process), "50.0% (100 B memory)");
    EXPECT_TRUE(block<DetailHeader>(page, "header").back.isEnabled);
    EXPECT_TRUE(block<DetailHeader>(page, "header").refresh.isEnabled);
}

TEST_F(MenuBarViewTest, PerformancePageShowsWhatTheManagerPublishes) {
    manager->thermalState.set(1);
    manager->cpuUsageHistory.set({{UUID{}, 0, 1}, {UUID{}, 0, 2}});
    manager->gpuUsageHistory.set({{UUID{}, 0, 3}});
    manager->memoryUsageHistory.set({{UUID{}, 0, 4}});
    manager->storageUsageHistory.set({{UUID{}, 0, 5}});
    manager->networkInfo.set(
        {.downloadBytesPerSecond = 12, .uploadBytesPerSecond = 30, .hasSample = true});
    settings.setCPUNormal(5);
    settings.setCPUHigh(11);
    view->perform(PanelAction::showPerformanceDetail);
    const Page page = view->page();
    EXPECT_EQ(block<TrendRow>(page, "trend.cpu"), (TrendRow{"CPU", "11%", {1, 2}, Tint::red}));
    EXPECT_THAT(block<TrendRow>(page, "trend.gpu").values, ElementsAre(3));
    EXPECT_THAT(block<TrendRow>(page, "trend.memory").values, ElementsAre(4));
    EXPECT_THAT(block<TrendRow>(page, "trend.storage").values, ElementsAre(5));
    EXPECT_EQ(block<TrendRow>(page, "trend.storage").value, "14%");
    EXPECT_EQ(block<InfoRow>(page, "network.total").value, "42 B file/s");
    EXPECT_EQ(block<InfoRow>(page, "thermal").value, "Fair");
}

TEST_F(MenuBarViewTest, CopiesThePageThatIsShownAsText) {
    std::string copied;
    PanelTargets copies = targets();
    copies.copyText = [&](const std::string& text) { copied = text; };
    MenuBarView copier(*manager, copies, {manual, formatter});
    copier.appear();
    CPUInfo busy;
    busy.usagePercentage = 42;
    manager->cpuInfo.set(busy);
    copier.perform(PanelAction::copy);
    EXPECT_THAT(copied, ::testing::StartsWith("Tarnwick\n"));
    EXPECT_THAT(copied, ::testing::HasSubstr("\nCPU: 42.0%\n"));
    EXPECT_THAT(copied, ::testing::HasSubstr("\n\nBattery Health\n"));
    EXPECT_THAT(copied, ::testing::Not(::testing::HasSubstr("Quit")));
    copier.perform(PanelAction::showPerformanceDetail);
    copier.perform(PanelAction::copy);
    EXPECT_THAT(copied, ::testing::StartsWith("Performance\n\nUsage Trends\nCPU: 42%\n"));
    // Without a clipboard there is nothing to do.
    EXPECT_FALSE(view->canPerform(PanelAction::copy));
    view->perform(PanelAction::copy);
    copier.disappear();
}

TEST_F(MenuBarViewTest, ADetailPageFollowsItsFigures) {
    view->appear();
    view->perform(PanelAction::showMemoryDetail);
    settle();
    pages.clear();
    manager->memoryInfo.set({.total = 400, .used = 100});
    manual.runMain();
    ASSERT_EQ(pages.size(), 1U);
    EXPECT_EQ(block<InfoRow>(pages[0], "breakdown.physical").value, "400 B memory");
}

TEST_F(MenuBarViewTest, ADetailPageRefreshesAndStays) {
    view->appear();
    for (const PanelAction detail :
         {PanelAction::showMemoryDetail, PanelAction::showPerformanceDetail}) {
        view->perform(detail);
        const MenuTab tab = view->activeTab();
        settle();
        takeCalls();
        view->perform(block<DetailHeader>(view->page(), "header").refresh.action);
        settle();
        EXPECT_EQ(count("health forced"), 1U);
        EXPECT_GE(count("cpu"), 1U);
        EXPECT_EQ(view->activeTab(), tab);
    }
}

TEST_F(MenuBarViewTest, EveryDetailPageLeadsBackToAHomePageThatFollows) {
    view->appear();
    for (const PanelAction detail :
         {PanelAction::showMemoryDetail, PanelAction::showPerformanceDetail}) {
        view->perform(detail);
        settle();
        view->perform(block<DetailHeader>(view->page(), "header").back.action);
        EXPECT_EQ(view->activeTab(), MenuTab::home);
        pages.clear();
        manager->cpuInfo.set(
            testing::makeCPU(detail == PanelAction::showMemoryDetail ? 40 : 50, 4));
        manual.runMain();
        ASSERT_EQ(pages.size(), 1U);
        EXPECT_EQ(block<UsageBar>(pages[0], "bar.cpu").detail,
                  detail == PanelAction::showMemoryDetail ? "40.0%" : "50.0%");
    }
}

TEST_F(MenuBarViewTest, AHiddenViewAnnouncesNoPage) {
    view->perform(PanelAction::showMemoryDetail);
    EXPECT_TRUE(pages.empty());
}

TEST_F(MenuBarViewTest, AppearsOnTheHomePageWhateverWasPressedWhileItWasHidden) {
    view->perform(PanelAction::showPerformanceDetail);
    const Page page = view->appear();
    EXPECT_EQ(view->activeTab(), MenuTab::home);
    EXPECT_TRUE(std::holds_alternative<PanelHeader>(page.front().block));
    EXPECT_EQ(view->entryAction(), std::nullopt);
}

}  // namespace
}  // namespace tarnwick
