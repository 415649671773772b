// SPDX-License-Identifier: MIT
// Everything that the manager publishes and every threshold reaches the page that shows it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <vector>

#include "tests/core/stats_manager_fixture.h"
#include "tests/ui/panel/home_fixtures.h"
#include "tests/ui/panel/page_queries.h"
#include "ui/panel/menu_bar_view.h"

namespace tarnwick {
namespace {

using testing::block;
using testing::contains;

class PublishedFields : public testing::StatsManagerTest {
 protected:
    PublishedFields() {
        view.setPageObserver([this](const Page& page) { pages.push_back(page); });
        view.appear();
        settle();
    }
    /// What the observer has been told since the last time.
    std::vector<Page> announced() {
        manual.runMain();
        return std::exchange(pages, {});
    }

    std::unique_ptr<StatsManager> manager = makeSettled();
    testing::SpellingByteCountFormatter formatter;
    MenuBarView view{*manager, {}, {manual, formatter}};
    std::vector<Page> pages;
};

TEST_F(PublishedFields, BatteryDetectionDecidesWhatIsSaid) {
    BatteryInfo changed = testing::makeBattery(50, 91);
    changed.healthSource = BatteryHealthSource::systemProfiler;
    manager->batteryInfo.set(changed);
    manager->batteryDetectionComplete.set(false);
    const Page checking = view.page();
    EXPECT_EQ(block<CaptionText>(checking, "battery.state").text, "Checking battery\u2026");
    EXPECT_FALSE(contains(checking, "battery.capacity"));
    manager->batteryDetectionComplete.set(true);
    const Page complete = view.page();
    EXPECT_FALSE(contains(complete, "battery.state"));
    EXPECT_EQ(block<InfoRow>(complete, "battery.capacity").value, "91%");
    manager->batteryInfo.set({});
    EXPECT_EQ(block<CaptionText>(view.page(), "battery.state").text, "Battery data not available");
}

/// A field, a value for it that is not the one it has, and the page that shows it.
struct FieldCase {
    const char* name;
    /// home for the page that is there from the beginning.
    PanelAction page;
    void (*change)(StatsManager&);

    friend std::ostream& operator<<(std::ostream& out, const FieldCase& each) {
        return out << each.name;
    }
};

constexpr PanelAction kHome = PanelAction::goBack;
constexpr PanelAction kMemory = PanelAction::showMemoryDetail;
constexpr PanelAction kPerformance = PanelAction::showPerformanceDetail;

const std::vector<UsageSample>& otherHistory() {
    static const std::vector<UsageSample> history{{UUID{}, 0, 71}, {UUID{}, 2, 72}};
    return history;
}

class EachPublishedField : public PublishedFields,
                           public ::testing::WithParamInterface<FieldCase> {};

TEST_P(EachPublishedField, ThatChangesAloneIsANewPage) {
    settings.setCPUNormal(5);
    settings.setCPUHigh(11);
    view.perform(GetParam().page);
    settle();
    announced();
    GetParam().change(*manager);
    const std::vector<Page> after = announced();
    ASSERT_EQ(after.size(), 1U);
    EXPECT_EQ(after.front(), view.page());
}

INSTANTIATE_TEST_SUITE_P(
    , EachPublishedField,
    ::testing::Values(
        FieldCase{"batteryInfo", kHome,
                  [](StatsManager& manager) {
                      BatteryInfo changed = *manager.batteryInfo;
                      changed.cycleCount = 412;
                      manager.batteryInfo.set(changed);
                  }},
        FieldCase{"batteryDetectionComplete", kHome,
                  [](StatsManager& manager) { manager.batteryDetectionComplete.set(false); }},
        FieldCase{"storageInfo", kHome,
                  [](StatsManager& manager) {
                      manager.storageInfo.set({testing::makeVolume(1000, 150)});
                  }},
        FieldCase{"storageInfoOfTheTrends", kPerformance,
                  [](StatsManager& manager) {
                      manager.storageInfo.set({testing::makeVolume(1000, 990)});
                  }},
        FieldCase{
            "memoryInfo", kHome,
            [](StatsManager& manager) { manager.memoryInfo.set({.total = 200, .used = 100}); }},
        FieldCase{
            "memoryInfoOfTheBreakdown", kMemory,
            [](StatsManager& manager) { manager.memoryInfo.set({.total = 200, .wired = 100}); }},
        FieldCase{
            "memoryInfoOfTheTrends", kPerformance,
            [](StatsManager& manager) { manager.memoryInfo.set({.total = 200, .used = 100}); }},
        FieldCase{"cpuInfo", kHome,
                  [](StatsManager& manager) { manager.cpuInfo.set(testing::makeCPU(50, 4)); }},
        FieldCase{"cpuInfoOfTheTrends", kPerformance,
                  [](StatsManager& manager) { manager.cpuInfo.set(testing::makeCPU(50, 4)); }},
        FieldCase{"gpuInfo", kHome,
                  [](StatsManager& manager) { manager.gpuInfo.set(testing::makeGPU(50, true)); }},
        FieldCase{"gpuInfoOfTheTrends", kPerformance,
                  [](StatsManager& manager) { manager.gpuInfo.set(testing::makeGPU(50, true)); }},
        FieldCase{"systemInfo", kHome,
                  [](StatsManager& manager) { manager.systemInfo.set({120}); }},
        FieldCase{"thermalState", kHome,
                  [](StatsManager& manager) { manager.thermalState.set(2); }},
        FieldCase{"thermalStateOfThePerformance", kPerformance,
                  [](StatsManager& manager) { manager.thermalState.set(2); }},
        FieldCase{"topCPUProcesses", kHome,
                  [](StatsManager& manager) {
                      manager.topCPUProcesses.set({{.id = 9, .name = "other", .cpuUsage = 3}});
                  }},
        FieldCase{"topMemoryProcesses", kMemory,
                  [](StatsManager& manager) {
                      manager.topMemoryProcesses.set(
                          {{.id = 9, .name = "other", .memoryUsage = 3}});
                  }},
        FieldCase{"networkInfo", kPerformance,
                  [](StatsManager& manager) {
                      manager.networkInfo.set({.uploadBytesPerSecond = 9, .hasSample = true});
                  }},
        FieldCase{"cpuUsageHistory", kPerformance,
                  [](StatsManager& manager) { manager.cpuUsageHistory.set(otherHistory()); }},
        FieldCase{"gpuUsageHistory", kPerformance,
                  [](StatsManager& manager) { manager.gpuUsageHistory.set(otherHistory()); }},
        FieldCase{"memoryUsageHistory", kPerformance,
                  [](StatsManager& manager) { manager.memoryUsageHistory.set(otherHistory()); }},
        FieldCase{"storageUsageHistory", kPerformance,
                  [](StatsManager& manager) { manager.storageUsageHistory.set(otherHistory()); }}),
    [](const auto& row) { return row.param.name; });

/// A metric, its threshold, and where it is shown; each metric stands at 70 percent.
struct ThresholdCase {
    const char* name;
    const char* metric;
    void (UserSettings::*set)(double);
    /// What the metric reaches with it.
    Tint level;
    /// The threshold that has to make way for it, if any.
    void (UserSettings::*makeWay)(double);

    friend std::ostream& operator<<(std::ostream& out, const ThresholdCase& each) {
        return out << each.name;
    }
};

class EachThreshold : public PublishedFields, public ::testing::WithParamInterface<ThresholdCase> {
 protected:
    EachThreshold() {
        manager->cpuInfo.set(testing::makeCPU(70, 4));
        manager->gpuInfo.set(testing::makeGPU(70, true));
        manager->memoryInfo.set({.total = 200, .used = 140});
        manager->storageInfo.set({testing::makeVolume(1000, 700)});
        for (const auto set : {&UserSettings::setCPUHigh, &UserSettings::setGPUHigh,
                               &UserSettings::setMemoryHigh, &UserSettings::setStorageHigh}) {
            (settings.*set)(90);
        }
        for (const auto set : {&UserSettings::setCPUNormal, &UserSettings::setGPUNormal,
                               &UserSettings::setMemoryNormal, &UserSettings::setStorageNormal}) {
            (settings.*set)(80);
        }
        manual.runMain();
    }
};

TEST_P(EachThreshold, ColoursItsOwnMetricOnTheHomePageAndAmongTheTrends) {
    const ThresholdCase& each = GetParam();
    if (each.makeWay != nullptr) {
        (settings.*each.makeWay)(60);
    }
    (settings.*each.set)(70);
    for (const PanelAction shown : {kHome, kPerformance}) {
        view.perform(shown);
        const Page page = view.page();
        for (const char* metric : {"cpu", "gpu", "memory", "storage"}) {
            SCOPED_TRACE(metric);
            const Tint tint = shown == kHome
                                  ? block<UsageBar>(page, std::string("bar.") + metric).tint
                                  : block<TrendRow>(page, std::string("trend.") + metric).color;
            EXPECT_EQ(tint, metric == std::string(each.metric) ? each.level : Tint::green);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    , EachThreshold,
    ::testing::Values(
        ThresholdCase{"cpuNormal", "cpu", &UserSettings::setCPUNormal, Tint::yellow, nullptr},
        ThresholdCase{"cpuHigh", "cpu", &UserSettings::setCPUHigh, Tint::red,
                      &UserSettings::setCPUNormal},
        ThresholdCase{"gpuNormal", "gpu", &UserSettings::setGPUNormal, Tint::yellow, nullptr},
        ThresholdCase{"gpuHigh", "gpu", &UserSettings::setGPUHigh, Tint::red,
                      &UserSettings::setGPUNormal},
        ThresholdCase{"memoryNormal", "memory", &UserSettings::setMemoryNormal, Tint::yellow,
                      nullptr},
        ThresholdCase{"memoryHigh", "memory", &UserSettings::setMemoryHigh, Tint::red,
                      &UserSettings::setMemoryNormal},
        ThresholdCase{"storageNormal", "storage", &UserSettings::setStorageNormal, Tint::yellow,
                      nullptr},
        ThresholdCase{"storageHigh", "storage", &UserSettings::setStorageHigh, Tint::red,
                      &UserSettings::setStorageNormal}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace tarnwick
