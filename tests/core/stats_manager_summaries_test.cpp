// SPDX-License-Identifier: MIT
#include <cstdlib>
#include <ctime>
#include <limits>

#include "evaluation/menu_bar_label.h"
#include "evaluation/metric_summary_resolver.h"
#include "tests/core/stats_manager_fixture.h"

namespace tarnwick::testing {
namespace {

/// Sets the time zone while it lives.
class TimeZone {
 public:
    explicit TimeZone(const char* name) {
        if (const char* before = std::getenv("TZ")) {
            before_ = before;
        }
        setenv("TZ", name, 1);
        tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;
    ~TimeZone() {
        before_ ? setenv("TZ", before_->c_str(), 1) : unsetenv("TZ");
        tzset();
    }

 private:
    std::optional<std::string> before_;
};

constexpr double kMinute = 60;

class Summaries : public StatsManagerTest {
 protected:
    /// A manager that has measured these, percent.
    std::unique_ptr<StatsManager> measured(double cpuUsage, std::optional<double> gpuUsage,
                                           double memoryUsage, double storageUsage) {
        cpu = makeCPU(cpuUsage, 4);
        gpu = gpuUsage ? makeGPU(*gpuUsage, true) : makeGPU(100, false);
        memory = {.total = 10000, .used = static_cast<std::uint64_t>(memoryUsage * 100)};
        storage = makeVolume(10000, static_cast<std::int64_t>(storageUsage * 100));
        auto manager = make();
        settle();
        return manager;
    }

    TimeZone zone_{"UTC0"};
};

TEST_F(Summaries, WithoutDataBothSayLoading) {
    const auto manager = make();
    const MetricDisplaySummary loading{MetricSeverity::ok, "Loading...",
                                       "Collecting system data..."};
    EXPECT_EQ(manager->displaySummary(), loading);
    EXPECT_EQ(manager->menuBarSummary(0), loading);
}

TEST_F(Summaries, TheLabelShowsAGreenCheckBeforeTheFirstMeasurement) {
    const auto manager = make();
    const MenuBarLabel label = menuBarLabel(manager->menuBarSummary(0), "advanced");
    EXPECT_EQ(label.symbol, "checkmark.circle.fill");
    EXPECT_EQ(label.tint, Tint::green);
    EXPECT_EQ(label.text, "Loading...");
}

TEST_F(Summaries, AllBelowNormalLeavesThePanelsTextEmpty) {
    const auto manager = measured(12, 5, 30, 40);
    EXPECT_EQ(manager->displaySummary(),
              (MetricDisplaySummary{MetricSeverity::ok, "", "No metrics are above thresholds."}));
}

TEST_F(Summaries, AllBelowNormalRotatesFourMetricsByTheMinute) {
    const auto manager = measured(12, 5, 30, 40);
    const char* expected[] = {"CPU 12%", "GPU 5%", "RAM 30%", "Disk 40%", "CPU 12%"};
    for (int minute = 0; minute < 5; ++minute) {
        EXPECT_EQ(manager->menuBarSummary(minute * kMinute),
                  (MetricDisplaySummary{MetricSeverity::ok, expected[minute], ""}))
            << minute;
    }
    EXPECT_EQ(manager->menuBarSummary(59 * kMinute).menuBarText, "Disk 40%");
    EXPECT_EQ(manager->menuBarSummary(60 * kMinute).menuBarText, "CPU 12%");
}

TEST_F(Summaries, AllBelowNormalRotatesThreeMetricsWithoutAGPU) {
    const auto manager = measured(12, {}, 30, 40);
    const char* expected[] = {"CPU 12%", "RAM 30%", "Disk 40%", "CPU 12%"};
    for (int minute = 0; minute < 4; ++minute) {
        EXPECT_EQ(manager->menuBarSummary(minute * kMinute).menuBarText, expected[minute])
            << minute;
    }
}

TEST_F(Summaries, TheTextStaysForTheWholeMinute) {
    const auto manager = measured(12, 5, 30, 40);
    EXPECT_EQ(manager->menuBarSummary(59.999).menuBarText, "CPU 12%");
    EXPECT_EQ(manager->menuBarSummary(60).menuBarText, "GPU 5%");
    EXPECT_EQ(manager->menuBarSummary(119.5).menuBarText, "GPU 5%");
}

TEST_F(Summaries, TheMinuteIsThatOfTheUsersTimeZone) {
    const auto manager = measured(12, 5, 30, 40);
    {
        // Half an hour ahead: minute 30 of the hour, the third of four.
        const TimeZone zone("XXX-5:30");
        EXPECT_EQ(manager->menuBarSummary(0).menuBarText, "RAM 30%");
        EXPECT_EQ(manager->menuBarSummary(30 * kMinute).menuBarText, "CPU 12%");
    }
    {
        // Three quarters of an hour: minute 45.
        const TimeZone zone("XXX-5:45");
        EXPECT_EQ(manager->menuBarSummary(0).menuBarText, "GPU 5%");
    }
    {
        // Behind by three and a half hours: minute 30 of the hour before.
        const TimeZone zone("XXX3:30");
        EXPECT_EQ(manager->menuBarSummary(kMinute).menuBarText, "Disk 40%");
    }
}

TEST_F(Summaries, AWholeHourOfTimeZoneChangesNothing) {
    const auto manager = measured(12, 5, 30, 40);
    const TimeZone zone("XXX-9");
    EXPECT_EQ(manager->menuBarSummary(2 * kMinute).menuBarText, "RAM 30%");
}

TEST_F(Summaries, TimesBefore1970CountTheSameWay) {
    const auto manager = measured(12, 5, 30, 40);
    // 23:59:59.5 on the last day of 1969.
    EXPECT_EQ(manager->menuBarSummary(-0.5).menuBarText, "Disk 40%");
    EXPECT_EQ(manager->menuBarSummary(-60).menuBarText, "Disk 40%");
    EXPECT_EQ(manager->menuBarSummary(-60.5).menuBarText, "RAM 30%");
    EXPECT_EQ(manager->menuBarSummary(-3600).menuBarText, "CPU 12%");
    const TimeZone zone("XXX-5:30");
    EXPECT_EQ(manager->menuBarSummary(-60).menuBarText, "GPU 5%");
}

TEST_F(Summaries, ATimeBeyondTheCalendarDoesNoHarm) {
    const auto manager = measured(12, 5, 30, 40);
    for (const double time : {1e300, -1e300, 1e18, std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(manager->menuBarSummary(time).menuBarText, "CPU 12%") << time;
    }
}

TEST_F(Summaries, RotatingValuesAreRoundedToWholePercent) {
    const auto manager = measured(0.4, 89.6, 49.5, 12.49);
    EXPECT_EQ(manager->menuBarSummary(0).menuBarText, "CPU 0%");
    EXPECT_EQ(manager->menuBarSummary(kMinute).menuBarText, "GPU 90%");
    EXPECT_EQ(manager->menuBarSummary(3 * kMinute).menuBarText, "Disk 12%");
}

TEST_F(Summaries, AMetricAboveItsThresholdIsShownWhateverTheMinute) {
    const auto manager = measured(12, 5, 85, 40);
    const MetricDisplaySummary expected{MetricSeverity::info, "RAM 85%",
                                        "Memory usage is at 85%, above the normal threshold."};
    for (int minute = 0; minute < 8; ++minute) {
        EXPECT_EQ(manager->menuBarSummary(minute * kMinute), expected) << minute;
    }
    EXPECT_EQ(manager->displaySummary(), expected);
    const MenuBarLabel label = menuBarLabel(expected, "advanced");
    EXPECT_EQ(label.symbol, "info.circle.fill");
    EXPECT_EQ(label.tint, Tint::yellow);
}

TEST_F(Summaries, BothSummariesChooseTheBestCandidate) {
    const auto manager = measured(89, 96, 95, 81);
    EXPECT_EQ(manager->displaySummary().menuBarText, "RAM 95%");
    EXPECT_EQ(manager->displaySummary().severity, MetricSeverity::warning);
    EXPECT_EQ(manager->menuBarSummary(0), manager->displaySummary());
}

TEST_F(Summaries, AnUnavailableGPUIsNeitherJudgedNorShown) {
    const auto manager = measured(12, {}, 30, 40);
    EXPECT_EQ(manager->displaySummary().severity, MetricSeverity::ok);
    for (int minute = 0; minute < 12; ++minute) {
        EXPECT_EQ(manager->menuBarSummary(minute * kMinute).menuBarText.find("GPU"),
                  std::string::npos);
    }
}

TEST_F(Summaries, StorageIsThatOfTheLargestVolume) {
    const auto manager = measured(12, 5, 30, 40);
    manager->storageInfo.set({makeVolume(100, 99), makeVolume(1000, 820)});
    EXPECT_EQ(manager->displaySummary().menuBarText, "Disk 82%");
}

TEST_F(Summaries, WithoutVolumesOrMemoryTheirShareIsZero) {
    const auto manager = measured(12, 5, 30, 40);
    manager->storageInfo.set({});
    manager->memoryInfo.set({.total = 0, .used = 7});
    EXPECT_EQ(manager->menuBarSummary(2 * kMinute).menuBarText, "RAM 0%");
    EXPECT_EQ(manager->menuBarSummary(3 * kMinute).menuBarText, "Disk 0%");
    manager->storageInfo.set({makeVolume(0, 5)});
    EXPECT_EQ(manager->menuBarSummary(3 * kMinute).menuBarText, "Disk 0%");
}

TEST_F(Summaries, ThresholdsAreReadAtTheMomentOfTheSummary) {
    const auto manager = measured(50, 5, 30, 40);
    EXPECT_EQ(manager->displaySummary().severity, MetricSeverity::ok);
    settings.setCPUNormal(50);
    EXPECT_EQ(manager->displaySummary().severity, MetricSeverity::info);
    settings.setCPUHigh(50);
    EXPECT_EQ(manager->displaySummary().severity, MetricSeverity::info);
    settings.setCPUNormal(40);
    EXPECT_EQ(manager->displaySummary().severity, MetricSeverity::warning);
}

TEST_F(Summaries, CrossedThresholdsAreRepairedForTheSummaryOnly) {
    settings.setCPUNormal(95);
    settings.setCPUHigh(90);
    const auto manager = measured(95.5, 5, 30, 40);
    EXPECT_EQ(manager->displaySummary().severity, MetricSeverity::info);
    EXPECT_EQ(manager->menuBarSummary(0).severity, MetricSeverity::info);
    EXPECT_EQ(settings.cpuNormal(), 95);
    EXPECT_EQ(settings.cpuHigh(), 90);
}

}  // namespace
}  // namespace tarnwick::testing
