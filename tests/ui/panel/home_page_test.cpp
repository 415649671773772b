// SPDX-License-Identifier: MIT
#include "ui/panel/home_page.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <ostream>
#include <set>

#include "tests/ui/panel/home_fixtures.h"
#include "tests/ui/panel/page_queries.h"

namespace tarnwick {
namespace {

using testing::block;
using testing::calmMachine;
using testing::contains;
using ::testing::ElementsAre;
using testing::ids;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::int64_t k20GiB = 21474836480;

/// Refuses what must never be asked of a formatter.
class StrictByteCountFormatter final : public platform::ByteCountFormatter {
 public:
    std::string stringFromByteCount(std::int64_t byteCount,
                                    platform::CountStyle style) const override {
        EXPECT_GE(byteCount, 0);
        return testing::SpellingByteCountFormatter().stringFromByteCount(byteCount, style);
    }
};

class HomePage : public ::testing::Test {
 protected:
    Page build() const { return homePage(in, StrictByteCountFormatter()); }
    StorageInfo& volume() { return in.storageInfo.front(); }

    HomePageInputs in = calmMachine();
};

TEST_F(HomePage, ShowsItsBlocksFromTopToBottom) {
    in.remindRestartAfterWeek = true;
    in.systemInfo.uptime = 700000;
    in.cpuInfo.usagePercentage = 95;
    volume().availableSpace = 1;
    EXPECT_THAT(ids(build()), ElementsAre("header", "uptime", "thermals", "restart", "bar.cpu",
                                          "bar.gpu", "bar.memory", "bar.storage", "lowStorage",
                                          "battery", "battery.capacity", "battery.cycles",
                                          "battery.condition", "navigation.memory",
                                          "navigation.performance", "topCPU", "divider", "footer"));
}

TEST_F(HomePage, EveryItemHasItsOwnId) {
    for (const testing::HomeState& state : testing::homeStates()) {
        const std::vector<std::string> all =
            ids(homePage(state.inputs, StrictByteCountFormatter()));
        EXPECT_EQ(std::set<std::string>(all.begin(), all.end()).size(), all.size()) << state.name;
    }
}

TEST_F(HomePage, KeepsTwelvePointsBetweenBlocksAndLessInside) {
    in.cpuInfo.usagePercentage = 95;
    volume().availableSpace = 1;
    std::vector<int> spacings;
    for (const PageItem& item : build()) {
        spacings.push_back(item.spaceAbove);
    }
    EXPECT_THAT(spacings, ElementsAre(0, 12, 6, 12, 11, 11, 11, 6, 10, 6, 6, 6, 12, 6, 12, 12, 12));
}

TEST_F(HomePage, HeaderHasTitleButtonsAndSummary) {
    in.displaySummary.popoverText = "CPU usage is at 97%, above the high threshold.";
    const Page page = build();
    const auto& header = block<PanelHeader>(page, "header");
    EXPECT_EQ(header.title, "Tarnwick");
    EXPECT_EQ(header.summary, "CPU usage is at 97%, above the high threshold.");
    ASSERT_EQ(header.buttons.size(), 2U);
    EXPECT_EQ(header.buttons[0],
              (PanelButton{"Settings", "gearshape", PanelAction::showSettings, false}));
    EXPECT_EQ(header.buttons[1],
              (PanelButton{"Refresh", "arrow.clockwise", PanelAction::refresh, true}));
}

TEST_F(HomePage, UptimeIsPlain) {
    in.systemInfo.uptime = 3 * 86400 + 4 * 3600 + 12 * 60;
    EXPECT_EQ(block<StatusRow>(build(), "uptime"),
              (StatusRow{"Uptime", "clock", "3d 4h 12m", false}));
}

TEST_F(HomePage, UptimeIsLoadingUntilItIsAboveZero) {
    for (const double uptime : {0.0, -1.0, kNaN}) {
        in.systemInfo.uptime = uptime;
        EXPECT_EQ(block<StatusRow>(build(), "uptime").value, "Loading...");
    }
    in.systemInfo.uptime = 0.5;
    EXPECT_EQ(block<StatusRow>(build(), "uptime").value, "0m");
}

TEST_F(HomePage, UptimeTurnsToHoursAtAnHour) {
    in.systemInfo.uptime = 3599.9;
    EXPECT_EQ(block<StatusRow>(build(), "uptime").value, "59m");
    in.systemInfo.uptime = 3600;
    EXPECT_EQ(block<StatusRow>(build(), "uptime").value, "1h 0m");
}

TEST_F(HomePage, ThermalStateIsAWord) {
    const std::pair<std::int64_t, const char*> words[] = {{0, "Nominal"}, {1, "Fair"},
                                                          {2, "Serious"}, {3, "Critical"},
                                                          {4, "Unknown"}, {-1, "Unknown"}};
    for (const auto& [state, word] : words) {
        in.thermalState = state;
        EXPECT_EQ(block<StatusRow>(build(), "thermals"),
                  (StatusRow{"Thermals", "thermometer", word, true}));
    }
}

TEST_F(HomePage, RestartIsRecommendedFromExactlySevenDaysOn) {
    in.remindRestartAfterWeek = true;
    in.systemInfo.uptime = 604800;
    const Page page = build();
    EXPECT_EQ(block<NoticeRow>(page, "restart"),
              (NoticeRow{"arrow.clockwise.circle.fill", Tint::orange,
                         "Restart recommended (over 7 days)"}));
    EXPECT_EQ(block<StatusRow>(page, "uptime").value, "7d 0h 0m");
    in.systemInfo.uptime = 604799.9;
    EXPECT_FALSE(contains(build(), "restart"));
}

TEST_F(HomePage, RestartIsNeverRecommendedWithTheReminderOff) {
    in.remindRestartAfterWeek = false;
    for (const double uptime : {604800.0, 1e7}) {
        in.systemInfo.uptime = uptime;
        EXPECT_FALSE(contains(build(), "restart"));
    }
}

TEST_F(HomePage, CPUBarShowsOneDecimal) {
    in.cpuInfo.usagePercentage = 42.04;
    EXPECT_EQ(block<UsageBar>(build(), "bar.cpu"),
              (UsageBar{"CPU", "cpu", 42.04, "42.0%", Tint::green}));
}

TEST_F(HomePage, GPUBarShowsOneDecimal) {
    in.gpuInfo.usagePercentage = 17.36;
    EXPECT_EQ(block<UsageBar>(build(), "bar.gpu"),
              (UsageBar{"GPU", "display.2", 17.36, "17.4%", Tint::green}));
}

TEST_F(HomePage, CPUAboveOneHundredIsAFullBar) {
    in.cpuInfo.usagePercentage = 100.04;
    const Page page = build();
    EXPECT_EQ(block<UsageBar>(page, "bar.cpu").detail, "100.0%");
    EXPECT_EQ(block<UsageBar>(page, "bar.cpu").value, 100);
    EXPECT_EQ(block<UsageBar>(page, "bar.cpu").fraction(), 1);
}

TEST_F(HomePage, UsagesThatAreNoPercentageReadZero) {
    for (const double usage : {kNaN, kInfinity, -kInfinity, -0.5, -0.0, 0.0}) {
        in.cpuInfo.usagePercentage = usage;
        in.gpuInfo.usagePercentage = usage;
        const Page page = build();
        for (const char* id : {"bar.cpu", "bar.gpu"}) {
            EXPECT_EQ(block<UsageBar>(page, id).detail, "0.0%");
            EXPECT_EQ(block<UsageBar>(page, id).value, 0);
        }
    }
}

TEST_F(HomePage, LevelsAreJudgedBeforeTheUsageIsClamped) {
    const auto expectTints = [this](double usage, Tint tint) {
        in.cpuInfo.usagePercentage = usage;
        in.gpuInfo.usagePercentage = usage;
        const Page page = build();
        EXPECT_EQ(block<UsageBar>(page, "bar.cpu").tint, tint) << usage;
        EXPECT_EQ(block<UsageBar>(page, "bar.gpu").tint, tint) << usage;
    };
    expectTints(kInfinity, Tint::red);
    expectTints(kNaN, Tint::green);
    expectTints(-kInfinity, Tint::green);
    // Thresholds that no usage within the bounds reaches, and one that a negative usage does.
    in.thresholds.cpuHigh = 110;
    in.thresholds.gpuHigh = 110;
    expectTints(111, Tint::red);
    expectTints(109, Tint::yellow);
    in.thresholds.cpuNormal = -1;
    in.thresholds.gpuNormal = -1;
    expectTints(-1, Tint::yellow);
    expectTints(-2, Tint::green);
}

/// One metric, its bar and its thresholds, away from those of the others.
struct LevelCase {
    const char* name;
    const char* id;
    void (*setUsage)(HomePageInputs&, double);
    double MetricThresholds::*normal;
    double MetricThresholds::*high;

    friend std::ostream& operator<<(std::ostream& out, const LevelCase& metric) {
        return out << metric.name;
    }
};

void setVolumeUsage(HomePageInputs& in, double usage) {
    in.storageInfo.front().totalSpace = 10000;
    in.storageInfo.front().usedSpace = std::llround(usage * 100);
}

void setMemoryUsage(HomePageInputs& in, double usage) {
    in.memoryInfo.total = 10000;
    in.memoryInfo.used = static_cast<std::uint64_t>(std::llround(usage * 100));
}

class HomePageLevels : public ::testing::TestWithParam<LevelCase> {};

TEST_P(HomePageLevels, ReachingAThresholdCounts) {
    const LevelCase& metric = GetParam();
    HomePageInputs in = calmMachine();
    in.thresholds = {1, 2, 1, 2, 1, 2, 1, 2};
    in.thresholds.*metric.normal = 61;
    in.thresholds.*metric.high = 73;
    const std::pair<double, Tint> levels[] = {{60.99, Tint::green},
                                              {61, Tint::yellow},
                                              {72.99, Tint::yellow},
                                              {73, Tint::red},
                                              {100, Tint::red}};
    for (const auto& [usage, tint] : levels) {
        metric.setUsage(in, usage);
        EXPECT_EQ(block<UsageBar>(homePage(in, StrictByteCountFormatter()), metric.id).tint, tint)
            << usage;
    }
}

INSTANTIATE_TEST_SUITE_P(
    , HomePageLevels,
    ::testing::Values(
        LevelCase{"CPU", "bar.cpu",
                  [](HomePageInputs& in, double usage) { in.cpuInfo.usagePercentage = usage; },
                  &MetricThresholds::cpuNormal, &MetricThresholds::cpuHigh},
        LevelCase{"GPU", "bar.gpu",
                  [](HomePageInputs& in, double usage) { in.gpuInfo.usagePercentage = usage; },
                  &MetricThresholds::gpuNormal, &MetricThresholds::gpuHigh},
        LevelCase{"Memory", "bar.memory", setMemoryUsage, &MetricThresholds::memoryNormal,
                  &MetricThresholds::memoryHigh},
        LevelCase{"Storage", "bar.storage", setVolumeUsage, &MetricThresholds::storageNormal,
                  &MetricThresholds::storageHigh}),
    [](const auto& row) { return row.param.name; });

TEST_F(HomePage, GPUBarIsAbsentWithoutAGPU) {
    in.gpuInfo.isAvailable = false;
    in.gpuInfo.usagePercentage = 99;
    const Page page = build();
    EXPECT_FALSE(contains(page, "bar.gpu"));
    const std::vector<std::string> all = ids(page);
    const auto cpu = std::find(all.begin(), all.end(), "bar.cpu");
    EXPECT_EQ(*(cpu + 1), "bar.memory");
    EXPECT_EQ(*(cpu + 2), "bar.storage");
}

TEST_F(HomePage, MemoryDetailHasUsedTotalAndShare) {
    in.memoryInfo.used = 12;
    in.memoryInfo.total = 16;
    EXPECT_EQ(
        block<UsageBar>(build(), "bar.memory"),
        (UsageBar{"Memory", "memorychip", 75, "12 B memory / 16 B memory (75%)", Tint::green}));
}

TEST_F(HomePage, MemoryShareIsRounded) {
    in.memoryInfo.used = 996;
    in.memoryInfo.total = 1000;
    EXPECT_THAT(block<UsageBar>(build(), "bar.memory").detail, ::testing::EndsWith("(100%)"));
}

TEST_F(HomePage, MemoryWithoutATotalIsEmpty) {
    in.memoryInfo = {};
    in.memoryInfo.used = 5;
    const Page page = build();
    EXPECT_EQ(block<UsageBar>(page, "bar.memory").value, 0);
    EXPECT_EQ(block<UsageBar>(page, "bar.memory").detail, "5 B memory / 0 B memory (0%)");
}

TEST_F(HomePage, MemoryBeyondSignedCountsStaysLarge) {
    in.memoryInfo.used = std::numeric_limits<std::uint64_t>::max();
    in.memoryInfo.total = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(block<UsageBar>(build(), "bar.memory").detail,
              "9223372036854775807 B memory / 9223372036854775807 B memory (100%)");
}

TEST_F(HomePage, StorageBarNamesTheVolume) {
    volume().name = "Data";
    volume().usedSpace = 250;
    volume().totalSpace = 1000;
    EXPECT_EQ(
        block<UsageBar>(build(), "bar.storage"),
        (UsageBar{"Storage (Data)", "internaldrive", 25, "250 B file / 1000 B file", Tint::green}));
}

TEST_F(HomePage, StorageBarIsAboutTheFirstVolumeOnly) {
    StorageInfo larger = volume();
    larger.name = "Other";
    larger.totalSpace *= 10;
    larger.availableSpace = 0;
    in.storageInfo.push_back(larger);
    const Page page = build();
    EXPECT_EQ(block<UsageBar>(page, "bar.storage").title, "Storage (home)");
    EXPECT_FALSE(contains(page, "lowStorage"));
}

TEST_F(HomePage, StorageWithoutCapacityIsEmpty) {
    volume().totalSpace = 0;
    volume().usedSpace = 0;
    volume().availableSpace = 0;
    const Page page = build();
    EXPECT_EQ(block<UsageBar>(page, "bar.storage"),
              (UsageBar{"Storage (home)", "internaldrive", 0, "0 B file / 0 B file", Tint::green}));
    EXPECT_FALSE(contains(page, "lowStorage"));
}

TEST_F(HomePage, StorageOfASingleByteHasACapacity) {
    volume().totalSpace = 1;
    volume().usedSpace = 1;
    volume().availableSpace = 0;
    const Page page = build();
    EXPECT_EQ(block<UsageBar>(page, "bar.storage"),
              (UsageBar{"Storage (home)", "internaldrive", 100, "1 B file / 1 B file", Tint::red}));
    EXPECT_EQ(block<NoticeRow>(page, "lowStorage").text, "Low storage: 0 B file free");
}

TEST_F(HomePage, StorageOfANegativeSizeHasNone) {
    volume().totalSpace = -1000;
    volume().usedSpace = -990;
    volume().availableSpace = -10;
    const Page page = build();
    EXPECT_EQ(block<UsageBar>(page, "bar.storage"),
              (UsageBar{"Storage (home)", "internaldrive", 0, "0 B file / 0 B file", Tint::green}));
    EXPECT_FALSE(contains(page, "lowStorage"));
}

TEST_F(HomePage, StorageIsAPlaceholderUntilThereIsAVolume) {
    in.storageInfo.clear();
    const Page page = build();
    EXPECT_EQ(block<UsageBar>(page, "bar.storage"),
              (UsageBar{"Storage (Main Disk)", "internaldrive", 0, "Loading...", Tint::gray}));
    EXPECT_FALSE(contains(page, "lowStorage"));
}

TEST_F(HomePage, NegativeStorageCountsNeverReachTheFormatter) {
    volume().usedSpace = -5;
    volume().availableSpace = -7;
    const Page page = build();
    EXPECT_THAT(block<UsageBar>(page, "bar.storage").detail, ::testing::StartsWith("0 B file / "));
    EXPECT_EQ(block<NoticeRow>(page, "lowStorage").text, "Low storage: 0 B file free");
}

TEST_F(HomePage, StorageIsLowAtExactlyTwentyGibibytes) {
    volume().totalSpace = 5 * k20GiB;
    volume().availableSpace = k20GiB;
    EXPECT_EQ(block<NoticeRow>(build(), "lowStorage"),
              (NoticeRow{"exclamationmark.triangle.fill", Tint::orange,
                         "Low storage: 21474836480 B file free"}));
}

TEST_F(HomePage, StorageIsNotLowOneByteAboveTwentyGibibytes) {
    volume().totalSpace = 5 * k20GiB;
    volume().availableSpace = k20GiB + 1;
    EXPECT_FALSE(contains(build(), "lowStorage"));
}

TEST_F(HomePage, StorageIsLowAtExactlyTenPercent) {
    volume().totalSpace = 1000 * k20GiB;
    volume().availableSpace = 100 * k20GiB;
    EXPECT_TRUE(contains(build(), "lowStorage"));
    volume().availableSpace = 101 * k20GiB;
    EXPECT_FALSE(contains(build(), "lowStorage"));
}

TEST_F(HomePage, LowStorageIsDirectlyUnderTheStorageBar) {
    volume().availableSpace = 1;
    const std::vector<std::string> all = ids(build());
    const auto bar = std::find(all.begin(), all.end(), "bar.storage");
    EXPECT_EQ(*(bar + 1), "lowStorage");
}

TEST_F(HomePage, BatteryHasAHeader) {
    EXPECT_EQ(block<SectionHeader>(build(), "battery"),
              (SectionHeader{"Battery Health", "battery.100"}));
}

TEST_F(HomePage, BatteryIsBeingCheckedUntilDetectionIsComplete) {
    in.batteryDetectionComplete = false;
    const Page page = build();
    EXPECT_EQ(block<CaptionText>(page, "battery.state").text, "Checking battery\xE2\x80\xA6");
    EXPECT_FALSE(contains(page, "battery.capacity"));
    EXPECT_FALSE(contains(page, "battery.cycles"));
    EXPECT_FALSE(contains(page, "battery.condition"));
}

TEST_F(HomePage, BatteryIsNotAvailableWithoutOne) {
    in.batteryInfo.hasBattery = false;
    const Page page = build();
    EXPECT_EQ(block<CaptionText>(page, "battery.state").text, "Battery data not available");
    EXPECT_FALSE(contains(page, "battery.capacity"));
    EXPECT_FALSE(contains(page, "battery.cycles"));
    EXPECT_FALSE(contains(page, "battery.condition"));
}

TEST_F(HomePage, BatteryRowsShowCapacityCyclesAndCondition) {
    in.batteryInfo.healthCondition = " Replace Now\n";
    const Page page = build();
    EXPECT_EQ(block<InfoRow>(page, "battery.capacity"), (InfoRow{"Max Capacity", "87%"}));
    EXPECT_EQ(block<InfoRow>(page, "battery.cycles"), (InfoRow{"Cycles", "412"}));
    EXPECT_EQ(block<InfoRow>(page, "battery.condition"),
              (InfoRow{"Condition", "Service Recommended"}));
    EXPECT_FALSE(contains(page, "battery.state"));
}

TEST_F(HomePage, BatteryHealthFromTheRegistryIsUnknown) {
    in.batteryInfo.healthSource = BatteryHealthSource::ioRegistry;
    EXPECT_EQ(block<InfoRow>(build(), "battery.capacity").value, "Unknown");
}

TEST_F(HomePage, BatteryHealthFromAConditionIsUnknown) {
    in.batteryInfo.healthSource = BatteryHealthSource::qualitative;
    EXPECT_EQ(block<InfoRow>(build(), "battery.capacity").value, "Unknown");
}

TEST_F(HomePage, BatteryHealthWithoutASourceIsUnknown) {
    in.batteryInfo.healthSource = {};
    EXPECT_EQ(block<InfoRow>(build(), "battery.capacity").value, "Unknown");
}

TEST_F(HomePage, BatteryHealthWithoutAFigureIsUnknown) {
    in.batteryInfo.health = {};
    EXPECT_EQ(block<InfoRow>(build(), "battery.capacity").value, "Unknown");
}

TEST_F(HomePage, BatteryCyclesAreAbsentWhenUnknown) {
    in.batteryInfo.cycleCount = {};
    EXPECT_FALSE(contains(build(), "battery.cycles"));
    in.batteryInfo.cycleCount = 0;
    EXPECT_EQ(block<InfoRow>(build(), "battery.cycles").value, "0");
}

TEST_F(HomePage, BatteryConditionIsAbsentWhenBlank) {
    for (const char* blank : {"", " \t\r\n "}) {
        in.batteryInfo.healthCondition = blank;
        EXPECT_FALSE(contains(build(), "battery.condition"));
    }
    in.batteryInfo.healthCondition = "odd";
    EXPECT_EQ(block<InfoRow>(build(), "battery.condition").value, "Unknown");
}

TEST_F(HomePage, NavigationLeadsToTheDetailPages) {
    const Page page = build();
    EXPECT_EQ(block<NavigationButton>(page, "navigation.memory").button,
              (PanelButton{"What's Using Memory?", "", PanelAction::showMemoryDetail, false}));
    EXPECT_EQ(
        block<NavigationButton>(page, "navigation.performance").button,
        (PanelButton{"Performance & Network", "", PanelAction::showPerformanceDetail, false}));
    EXPECT_EQ(NavigationButton::kTrailingIcon, "chevron.right");
}

TEST_F(HomePage, TopCPUAppsAppearAtTheHighThreshold) {
    in.thresholds.cpuHigh = 90;
    in.cpuInfo.usagePercentage = 90;
    const Page page = build();
    EXPECT_EQ(block<UsageBar>(page, "bar.cpu").tint, Tint::red);
    const auto& section = block<TopAppsSection>(page, "topCPU");
    EXPECT_EQ(section.title, "Top CPU Apps");
    EXPECT_EQ(section.processes, in.topCPUProcesses);
    EXPECT_EQ(section.valueText(section.processes[0]), "112.5%");
}

TEST_F(HomePage, TopCPUAppsAreAbsentJustBelowTheHighThreshold) {
    in.thresholds.cpuHigh = 90;
    in.cpuInfo.usagePercentage = 89.99;
    const Page page = build();
    EXPECT_NE(block<UsageBar>(page, "bar.cpu").tint, Tint::red);
    EXPECT_FALSE(contains(page, "topCPU"));
}

TEST_F(HomePage, TopCPUAppsGoByTheUsageBeforeItIsClamped) {
    in.cpuInfo.usagePercentage = kNaN;
    EXPECT_FALSE(contains(build(), "topCPU"));
    in.cpuInfo.usagePercentage = kInfinity;
    EXPECT_TRUE(contains(build(), "topCPU"));
}

TEST_F(HomePage, TopCPUAppsAreThereBeforeAnyProcessIs) {
    in.cpuInfo.usagePercentage = 99;
    in.topCPUProcesses.clear();
    EXPECT_TRUE(block<TopAppsSection>(build(), "topCPU").rows().empty());
}

TEST_F(HomePage, FooterHasActivityMonitorAndQuit) {
    const Page page = build();
    const auto& footer = block<FooterRow>(page, "footer");
    ASSERT_EQ(footer.buttons.size(), 2U);
    EXPECT_EQ(footer.buttons[0],
              (PanelButton{"Activity Monitor", "", PanelAction::openActivityMonitor, false}));
    EXPECT_EQ(footer.buttons[1], (PanelButton{"Quit", "", PanelAction::quit, true}));
    EXPECT_EQ(FooterRow::kSpacing, 12);
}

TEST_F(HomePage, ButtonsAreEnabledForWhatCanBeDone) {
    in.enabledActions = {PanelAction::showSettings, PanelAction::openActivityMonitor,
                         PanelAction::showMemoryDetail, PanelAction::showPerformanceDetail};
    const Page page = build();
    EXPECT_TRUE(block<PanelHeader>(page, "header").buttons[0].isEnabled);
    EXPECT_FALSE(block<PanelHeader>(page, "header").buttons[1].isEnabled);
    EXPECT_TRUE(block<NavigationButton>(page, "navigation.memory").button.isEnabled);
    EXPECT_TRUE(block<NavigationButton>(page, "navigation.performance").button.isEnabled);
    EXPECT_TRUE(block<FooterRow>(page, "footer").buttons[0].isEnabled);
    EXPECT_FALSE(block<FooterRow>(page, "footer").buttons[1].isEnabled);
}

TEST_F(HomePage, PagesOfEqualInputsAreEqual) {
    in.cpuInfo.usagePercentage = 95;
    const Page page = build();
    EXPECT_EQ(page, build());
    in.topCPUProcesses[1].cpuUsage += 1;
    EXPECT_NE(page, build());
}

}  // namespace
}  // namespace tarnwick
