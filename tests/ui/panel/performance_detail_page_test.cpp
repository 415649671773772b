// SPDX-License-Identifier: MIT
#include "ui/panel/performance_detail_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include "tests/ui/panel/home_fixtures.h"
#include "tests/ui/panel/page_queries.h"

namespace tarnwick {
namespace {

using testing::block;
using testing::contains;
using ::testing::ElementsAre;

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinite = std::numeric_limits<double>::infinity();

/// A history with the values 0, 1, 2 and so on.
std::vector<UsageSample> history(int count) {
    std::vector<UsageSample> samples;
    for (int i = 0; i < count; ++i) {
        samples.push_back({UUID{}, i * 2.0, static_cast<double>(i)});
    }
    return samples;
}

class PerformanceDetailPageTest : public ::testing::Test {
 protected:
    PerformanceDetailPageTest() {
        inputs.gpuInfo.isAvailable = true;
        inputs.enabledActions = {PanelAction::refresh, PanelAction::goBack};
    }

    Page page() const { return performanceDetailPage(inputs, formatter); }
    TrendRow trend(const char* id) const { return block<TrendRow>(page(), id); }
    std::string info(const char* id) const { return block<InfoRow>(page(), id).value; }

    PerformanceDetailInputs inputs;
    testing::SpellingByteCountFormatter formatter;
};

TEST_F(PerformanceDetailPageTest, IsOrderedFromTopToBottom) {
    inputs.networkInfo.hasSample = true;
    EXPECT_THAT(testing::ids(page()),
                ElementsAre("header", "trends", "trend.cpu", "trend.gpu", "trend.memory",
                            "trend.storage", "divider.gpu", "gpu", "gpu.device", "gpu.renderer",
                            "gpu.tiler", "divider.network", "network", "network.download",
                            "network.upload", "network.total", "divider.thermal", "thermal"));
}

TEST_F(PerformanceDetailPageTest, HeaderLeadsBackAndRefreshes) {
    EXPECT_EQ(block<DetailHeader>(page(), "header"),
              (DetailHeader{"Performance",
                            {"Back", "chevron.left", PanelAction::goBack, true},
                            {"Refresh", "", PanelAction::refresh, true}}));
}

TEST_F(PerformanceDetailPageTest, TrendsShowTheValuesOfNow) {
    inputs.cpuInfo.usagePercentage = 42.5;
    inputs.gpuInfo.usagePercentage = 17.3;
    inputs.memoryInfo = {.total = 200, .used = 168};
    StorageInfo volume;
    volume.totalSpace = 1000;
    volume.usedSpace = 943;
    inputs.storageInfo = {volume, StorageInfo{}};
    EXPECT_EQ(block<GroupTitle>(page(), "trends").title, "Usage Trends");
    EXPECT_EQ(trend("trend.cpu"), (TrendRow{"CPU", "42%", {}, Tint::green}));
    EXPECT_EQ(trend("trend.gpu"), (TrendRow{"GPU", "17%", {}, Tint::green}));
    EXPECT_EQ(trend("trend.memory").title, "Memory");
    EXPECT_EQ(trend("trend.memory").value, "84%");
    EXPECT_EQ(trend("trend.storage").title, "Storage");
    EXPECT_EQ(trend("trend.storage").value, "94%");
}

TEST_F(PerformanceDetailPageTest, ValuesOfProcessorsAreClamped) {
    inputs.cpuInfo.usagePercentage = kNotANumber;
    inputs.gpuInfo.usagePercentage = 101;
    EXPECT_EQ(trend("trend.cpu").value, "0%");
    EXPECT_EQ(trend("trend.gpu").value, "100%");
    inputs.cpuInfo.usagePercentage = -3;
    EXPECT_EQ(trend("trend.cpu").value, "0%");
}

TEST_F(PerformanceDetailPageTest, WhatIsNotKnownIsNone) {
    StorageInfo empty;
    empty.usedSpace = 5;
    EXPECT_EQ(trend("trend.memory").value, "0%");
    EXPECT_EQ(trend("trend.storage").value, "0%");
    inputs.storageInfo = {empty};
    EXPECT_EQ(trend("trend.storage").value, "0%");
}

TEST_F(PerformanceDetailPageTest, ColoursFollowTheLevels) {
    inputs.thresholds = {.cpuNormal = 10,
                         .cpuHigh = 20,
                         .gpuNormal = 30,
                         .gpuHigh = 40,
                         .memoryNormal = 50,
                         .memoryHigh = 60,
                         .storageNormal = 70,
                         .storageHigh = 80};
    StorageInfo volume;
    volume.totalSpace = 1000;
    const auto tints = [&](double cpu, double gpu, std::uint64_t memory, std::int64_t storage) {
        inputs.cpuInfo.usagePercentage = cpu;
        inputs.gpuInfo.usagePercentage = gpu;
        inputs.memoryInfo = {.total = 1000, .used = memory};
        volume.usedSpace = storage;
        inputs.storageInfo = {volume};
        return std::vector{trend("trend.cpu").color, trend("trend.gpu").color,
                           trend("trend.memory").color, trend("trend.storage").color};
    };
    EXPECT_THAT(tints(9.9, 29.9, 499, 699),
                ElementsAre(Tint::green, Tint::green, Tint::green, Tint::green));
    EXPECT_THAT(tints(10, 30, 500, 700),
                ElementsAre(Tint::yellow, Tint::yellow, Tint::yellow, Tint::yellow));
    EXPECT_THAT(tints(19.9, 39.9, 599, 799),
                ElementsAre(Tint::yellow, Tint::yellow, Tint::yellow, Tint::yellow));
    EXPECT_THAT(tints(20, 40, 600, 800), ElementsAre(Tint::red, Tint::red, Tint::red, Tint::red));
}

TEST_F(PerformanceDetailPageTest, LevelsAreJudgedBeforeTheUsageIsClamped) {
    const std::pair<double, Tint> levels[] = {
        {kInfinite, Tint::red}, {kNotANumber, Tint::green}, {-kInfinite, Tint::green}};
    for (const auto& [usage, tint] : levels) {
        SCOPED_TRACE(usage);
        inputs.cpuInfo.usagePercentage = usage;
        inputs.gpuInfo.usagePercentage = usage;
        for (const char* id : {"trend.cpu", "trend.gpu"}) {
            EXPECT_EQ(trend(id).color, tint);
            EXPECT_EQ(trend(id).value, "0%");
        }
    }
    inputs.thresholds.cpuHigh = 110;
    inputs.thresholds.gpuHigh = 110;
    inputs.cpuInfo.usagePercentage = 111;
    inputs.gpuInfo.usagePercentage = 111;
    EXPECT_EQ(trend("trend.cpu").color, Tint::red);
    EXPECT_EQ(trend("trend.gpu").color, Tint::red);
    EXPECT_EQ(trend("trend.cpu").value, "100%");
}

TEST_F(PerformanceDetailPageTest, StorageOfASingleByteHasACapacityAndOneOfNegativeSizeNone) {
    StorageInfo volume;
    volume.totalSpace = 1;
    volume.usedSpace = 1;
    inputs.storageInfo = {volume};
    EXPECT_EQ(trend("trend.storage").value, "100%");
    EXPECT_EQ(trend("trend.storage").color, Tint::red);
    inputs.storageInfo.front().totalSpace = -1;
    EXPECT_EQ(trend("trend.storage").value, "0%");
    EXPECT_EQ(trend("trend.storage").color, Tint::green);
}

TEST_F(PerformanceDetailPageTest, TrendsShowTheLastThirtySamples) {
    inputs.cpuUsageHistory = history(45);
    inputs.gpuUsageHistory = history(31);
    inputs.memoryUsageHistory = history(30);
    inputs.storageUsageHistory = history(1);
    const std::vector<double> cpu = trend("trend.cpu").values;
    ASSERT_EQ(cpu.size(), 30U);
    EXPECT_EQ(cpu.front(), 15);
    EXPECT_EQ(cpu.back(), 44);
    EXPECT_EQ(trend("trend.gpu").values.front(), 1);
    EXPECT_EQ(trend("trend.memory").values.front(), 0);
    EXPECT_EQ(trend("trend.memory").values.size(), 30U);
    EXPECT_THAT(trend("trend.storage").values, ElementsAre(0));
    EXPECT_TRUE(trend("trend.storage").sparkline().points(120, 28).empty());
}

TEST_F(PerformanceDetailPageTest, WithoutAGPUThreeTrendsRemain) {
    inputs.gpuInfo.isAvailable = false;
    const Page shown = page();
    EXPECT_FALSE(contains(shown, "trend.gpu"));
    EXPECT_TRUE(contains(shown, "trend.cpu"));
    EXPECT_TRUE(contains(shown, "trend.memory"));
    EXPECT_TRUE(contains(shown, "trend.storage"));
    EXPECT_EQ(block<GroupTitle>(shown, "gpu").title, "System GPU");
}

TEST_F(PerformanceDetailPageTest, ShowsTheUnitsOfTheGPU) {
    inputs.gpuInfo = {.usagePercentage = 17.4,
                      .rendererUtilizationPercentage = 15.5,
                      .tilerUtilizationPercentage = 250,
                      .modelName = "Radeon 780M",
                      .coreCount = 12,
                      .isAvailable = true};
    EXPECT_EQ(block<GroupTitle>(page(), "gpu").title, "Radeon 780M 12-core");
    EXPECT_EQ(block<InfoRow>(page(), "gpu.device"), (InfoRow{"Device", "17%"}));
    EXPECT_EQ(block<InfoRow>(page(), "gpu.renderer"), (InfoRow{"Renderer", "16%"}));
    EXPECT_EQ(block<InfoRow>(page(), "gpu.tiler"), (InfoRow{"Tiler", "100%"}));
    inputs.gpuInfo.rendererUtilizationPercentage = -1;
    inputs.gpuInfo.tilerUtilizationPercentage = kNotANumber;
    EXPECT_EQ(info("gpu.renderer"), "0%");
    EXPECT_EQ(info("gpu.tiler"), "0%");
}

TEST_F(PerformanceDetailPageTest, ShowsTheThroughput) {
    inputs.networkInfo = {.downloadBytesPerSecond = 1000.4,
                          .uploadBytesPerSecond = 0.2,
                          .totalReceivedBytes = 77,
                          .totalSentBytes = 88,
                          .hasSample = true};
    EXPECT_EQ(block<GroupTitle>(page(), "network").title, "Network Throughput");
    EXPECT_EQ(block<InfoRow>(page(), "network.download"), (InfoRow{"Download", "1000 B file/s"}));
    EXPECT_EQ(block<InfoRow>(page(), "network.upload"), (InfoRow{"Upload", "0 B file/s"}));
    EXPECT_EQ(block<InfoRow>(page(), "network.total"), (InfoRow{"Total", "1001 B file/s"}));
    inputs.networkInfo.uploadBytesPerSecond = 0;
    EXPECT_EQ(info("network.upload"), "0 B/s");
}

TEST_F(PerformanceDetailPageTest, WaitsForTheFirstThroughput) {
    const Page shown = page();
    EXPECT_EQ(block<CaptionText>(shown, "network.state").text, "Waiting for the next sample...");
    EXPECT_FALSE(contains(shown, "network.download"));
    EXPECT_FALSE(contains(shown, "network.total"));
}

TEST_F(PerformanceDetailPageTest, NamesTheThermalState) {
    const auto word = [this](std::int64_t state) {
        inputs.thermalState = state;
        return info("thermal");
    };
    EXPECT_EQ(block<InfoRow>(page(), "thermal").label, "Thermal State");
    EXPECT_EQ(word(0), "Nominal");
    EXPECT_EQ(word(1), "Fair");
    EXPECT_EQ(word(2), "Serious");
    EXPECT_EQ(word(3), "Critical");
    EXPECT_EQ(word(4), "Unknown");
    EXPECT_EQ(word(-1), "Unknown");
}

TEST_F(PerformanceDetailPageTest, RowsStandCloserThanBlocks) {
    inputs.networkInfo.hasSample = true;
    for (const PageItem& item : page()) {
        const auto startsWith = [&item](const char* start) { return item.id.rfind(start, 0) == 0; };
        const int expected = item.id == "header"                            ? 0
                             : startsWith("trend.")                         ? 11
                             : startsWith("gpu.") || startsWith("network.") ? 6
                                                                            : 12;
        EXPECT_EQ(item.spaceAbove, expected) << item.id;
    }
}

}  // namespace
}  // namespace tarnwick
