// SPDX-License-Identifier: MIT
#include "tests/ui/panel/detail_fixtures.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "tests/ui/panel/home_fixtures.h"

namespace tarnwick::testing {

namespace {

constexpr std::uint64_t kMiB = std::uint64_t{1} << 20;
constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();

const std::set<PanelAction>& actions() {
    static const std::set<PanelAction> all = {PanelAction::refresh, PanelAction::goBack};
    return all;
}

MemoryDetailInputs calmMemory() {
    return {.memoryInfo = {.total = 16 * kGiB,
                           .used = 9 * kGiB + kGiB / 4,
                           .free = 4 * kGiB + kGiB / 2,
                           .app = 6 * kGiB + kGiB / 2,
                           .wired = 2 * kGiB + kGiB / 4,
                           .compressed = kGiB / 2,
                           .cached = 2 * kGiB + kGiB / 4,
                           .swapUsed = 412 * kMiB,
                           .swapTotal = 8 * kGiB},
            .topMemoryProcesses = {{.id = 11, .name = "Firefox", .memoryUsage = 2 * kGiB},
                                   {.id = 12,
                                    .name = "Visual Studio Code",
                                    .memoryUsage = kGiB + kGiB / 2},
                                   {.id = 13, .name = "gnome-shell", .memoryUsage = 524 * kMiB}},
            .enabledActions = actions()};
}

/// A history that goes up and down between `low` and `high`.
std::vector<UsageSample> course(int count, double low, double high) {
    std::vector<UsageSample> samples;
    for (int i = 0; i < count; ++i) {
        const double share = (1 + std::sin(i * 0.7) * std::cos(i * 0.23)) / 2;
        // Rounded, so that the golden files are the same on every machine.
        samples.push_back({UUID{}, i * 2.0, std::round(low + share * (high - low))});
    }
    return samples;
}

PerformanceDetailInputs calmPerformance() {
    PerformanceDetailInputs inputs;
    inputs.cpuInfo.usagePercentage = 42;
    inputs.gpuInfo = {.usagePercentage = 17.3,
                      .rendererUtilizationPercentage = 15,
                      .tilerUtilizationPercentage = 9,
                      .modelName = "Radeon 780M",
                      .coreCount = 12,
                      .isAvailable = true};
    inputs.memoryInfo = {.total = 16 * kGiB, .used = 9 * kGiB};
    StorageInfo volume;
    volume.totalSpace = 494 * kGB;
    volume.usedSpace = 267 * kGB;
    inputs.storageInfo = {volume};
    inputs.networkInfo = {
        .downloadBytesPerSecond = 1'800'000, .uploadBytesPerSecond = 214'000, .hasSample = true};
    inputs.cpuUsageHistory = course(60, 20, 60);
    inputs.gpuUsageHistory = course(45, 5, 30);
    inputs.memoryUsageHistory = course(30, 55, 58);
    inputs.storageUsageHistory = {{UUID{}, 0, 54}, {UUID{}, 2, 54}, {UUID{}, 4, 54}};
    inputs.enabledActions = actions();
    return inputs;
}

}  // namespace

std::vector<MemoryDetailState> memoryDetailStates() {
    std::vector<MemoryDetailState> states{
        {"loading", {.memoryInfo = {}, .topMemoryProcesses = {}, .enabledActions = actions()}},
        {"calm", calmMemory()}};
    const auto add = [&states](std::string_view name, auto change) {
        MemoryDetailInputs inputs = calmMemory();
        change(inputs);
        states.push_back({name, inputs});
    };
    add("collecting", [](MemoryDetailInputs& inputs) { inputs.topMemoryProcesses.clear(); });
    // Each value is exactly at a limit.
    add("normal_available", [](MemoryDetailInputs& inputs) {
        inputs.memoryInfo.total = 1000;
        inputs.memoryInfo.free = 150;
        inputs.memoryInfo.cached = 50;
        inputs.memoryInfo.compressed = 0;
    });
    add("high_available", [](MemoryDetailInputs& inputs) {
        inputs.memoryInfo.total = 1000;
        inputs.memoryInfo.free = 50;
        inputs.memoryInfo.cached = 50;
        inputs.memoryInfo.compressed = 0;
    });
    add("normal_compressed", [](MemoryDetailInputs& inputs) {
        inputs.memoryInfo.total = 1000;
        inputs.memoryInfo.free = 900;
        inputs.memoryInfo.compressed = 80;
    });
    add("high_compressed", [](MemoryDetailInputs& inputs) {
        inputs.memoryInfo.total = 1000;
        inputs.memoryInfo.free = 900;
        inputs.memoryInfo.compressed = 150;
    });
    // Each value is just on the harmless side of a limit.
    add("good_available", [](MemoryDetailInputs& inputs) {
        inputs.memoryInfo = {.total = 1000, .free = 151, .cached = 50};
    });
    add("below_high_available", [](MemoryDetailInputs& inputs) {
        inputs.memoryInfo = {.total = 1000, .free = 51, .cached = 50};
    });
    add("below_normal_compressed", [](MemoryDetailInputs& inputs) {
        inputs.memoryInfo = {.total = 1000, .free = 900, .compressed = 79};
    });
    add("below_high_compressed", [](MemoryDetailInputs& inputs) {
        inputs.memoryInfo = {.total = 1000, .free = 900, .compressed = 149};
    });
    add("more_than_there_is", [](MemoryDetailInputs& inputs) {
        inputs.memoryInfo = {.total = 1000, .free = 900, .cached = kMost};
    });
    add("without_total", [](MemoryDetailInputs& inputs) { inputs.memoryInfo.total = 0; });
    add("long", [](MemoryDetailInputs& inputs) {
        inputs.memoryInfo = {.total = kMost,
                             .used = kMost,
                             .free = 0,
                             .app = kMost,
                             .wired = kMost,
                             .compressed = kMost,
                             .cached = kMost,
                             .swapUsed = kMost,
                             .swapTotal = kMost};
        inputs.topMemoryProcesses = {
            {.id = 1, .name = std::string(300, 'W'), .memoryUsage = kMost},
            {.id = 2, .name = "", .memoryUsage = 0},
            {.id = 3, .name = "a <b>bold</b> name & more", .memoryUsage = kMost / 3}};
    });
    return states;
}

std::vector<PerformanceDetailState> performanceDetailStates() {
    std::vector<PerformanceDetailState> states{{"calm", calmPerformance()}};
    const auto add = [&states](std::string_view name, auto change) {
        PerformanceDetailInputs inputs = calmPerformance();
        change(inputs);
        states.push_back({name, inputs});
    };
    add("loading", [](PerformanceDetailInputs& inputs) {
        inputs = {};
        inputs.enabledActions = actions();
    });
    add("waiting", [](PerformanceDetailInputs& inputs) { inputs.networkInfo = {}; });
    add("no_gpu", [](PerformanceDetailInputs& inputs) { inputs.gpuInfo = {}; });
    add("info", [](PerformanceDetailInputs& inputs) {
        inputs.cpuInfo.usagePercentage = inputs.thresholds.cpuNormal;
        inputs.gpuInfo.usagePercentage = inputs.thresholds.gpuNormal;
        inputs.memoryInfo = {.total = 1000, .used = 840};
        inputs.thermalState = 1;
    });
    add("warning", [](PerformanceDetailInputs& inputs) {
        inputs.cpuInfo.usagePercentage = inputs.thresholds.cpuHigh;
        inputs.gpuInfo.usagePercentage = inputs.thresholds.gpuHigh;
        inputs.memoryInfo = {.total = 1000, .used = 990};
        inputs.storageInfo.front().usedSpace = 490 * kGB;
        inputs.cpuUsageHistory = course(30, 60, 100);
        inputs.thermalState = 3;
    });
    add("one_sample", [](PerformanceDetailInputs& inputs) {
        inputs.cpuUsageHistory = course(1, 20, 60);
        inputs.gpuUsageHistory = course(2, 20, 60);
        inputs.memoryUsageHistory = {};
        inputs.storageUsageHistory = course(31, 20, 60);
    });
    add("samples", [](PerformanceDetailInputs& inputs) {
        inputs.cpuUsageHistory = course(45, 0, 100);
        inputs.gpuUsageHistory = course(31, 0, 100);
        inputs.memoryUsageHistory = course(30, 0, 100);
        inputs.storageUsageHistory = course(29, 0, 100);
    });
    add("no_volume", [](PerformanceDetailInputs& inputs) {
        inputs.storageInfo.clear();
        inputs.memoryInfo.total = 0;
    });
    add("beyond", [](PerformanceDetailInputs& inputs) {
        inputs.cpuInfo.usagePercentage = 100.04;
        inputs.gpuInfo.usagePercentage = 101;
        inputs.gpuInfo.rendererUtilizationPercentage = -1;
        inputs.gpuInfo.tilerUtilizationPercentage = std::numeric_limits<double>::infinity();
        inputs.networkInfo.downloadBytesPerSecond = 0;
        inputs.networkInfo.uploadBytesPerSecond = 0.4;
        inputs.thermalState = 2;
    });
    add("below_high", [](PerformanceDetailInputs& inputs) {
        inputs.cpuInfo.usagePercentage = inputs.thresholds.cpuHigh - 0.01;
        inputs.gpuInfo.usagePercentage = inputs.thresholds.gpuHigh - 0.01;
        inputs.thermalState = -1;
    });
    add("long", [](PerformanceDetailInputs& inputs) {
        inputs.cpuInfo.usagePercentage = 1e300;
        inputs.gpuInfo.modelName = std::string(200, 'W') + " <b>&";
        inputs.gpuInfo.coreCount = std::numeric_limits<std::int64_t>::max();
        inputs.gpuInfo.usagePercentage = std::numeric_limits<double>::quiet_NaN();
        inputs.networkInfo.downloadBytesPerSecond = 4e18;
        inputs.networkInfo.uploadBytesPerSecond = 4e18;
        inputs.thermalState = 4;
    });
    return states;
}

}  // namespace tarnwick::testing
