// SPDX-License-Identifier: MIT
#include "tests/ui/panel/home_fixtures.h"

#include <array>
#include <cmath>
#include <limits>

namespace tarnwick::testing {

std::string PlainByteCountFormatter::stringFromByteCount(std::int64_t byteCount,
                                                         platform::CountStyle style) const {
    constexpr std::array units = {"bytes", "KB", "MB", "GB", "TB", "PB", "EB"};
    const double base = style == platform::CountStyle::file ? 1000 : 1024;
    if (byteCount == 0) {
        return "Zero KB";
    }
    double value = static_cast<double>(byteCount);
    std::size_t unit = 0;
    while (value >= base) {
        value /= base;
        ++unit;
    }
    const std::int64_t hundredths = std::llround(value * 100);
    std::string text = std::to_string(hundredths / 100);
    if (hundredths % 100 != 0) {
        text += "." + std::to_string(hundredths % 100 / 10);
        if (hundredths % 10 != 0) {
            text += std::to_string(hundredths % 10);
        }
    }
    return text + " " + units[unit];
}

std::string SpellingByteCountFormatter::stringFromByteCount(std::int64_t byteCount,
                                                            platform::CountStyle style) const {
    return std::to_string(byteCount) +
           (style == platform::CountStyle::file ? " B file" : " B memory");
}

HomePageInputs calmMachine() {
    HomePageInputs inputs;
    inputs.displaySummary = {MetricSeverity::ok, "", "No metrics are above thresholds."};
    inputs.systemInfo.uptime = 3 * 86400 + 4 * 3600 + 12 * 60;
    inputs.cpuInfo.usagePercentage = 42;
    inputs.cpuInfo.coreCount = 8;
    inputs.gpuInfo.isAvailable = true;
    inputs.gpuInfo.usagePercentage = 17.3;
    inputs.memoryInfo.total = 16 * kGiB;
    inputs.memoryInfo.used = 9 * kGiB + kGiB / 4;
    StorageInfo volume;
    volume.name = "home";
    volume.totalSpace = 494 * kGB + 380'000'000;
    volume.usedSpace = 267 * kGB + 120'000'000;
    volume.availableSpace = volume.totalSpace - volume.usedSpace;
    inputs.storageInfo = {volume};
    inputs.batteryDetectionComplete = true;
    inputs.batteryInfo.hasBattery = true;
    inputs.batteryInfo.health = 87;
    inputs.batteryInfo.healthSource = BatteryHealthSource::systemProfiler;
    inputs.batteryInfo.healthCondition = "Good";
    inputs.batteryInfo.cycleCount = 412;
    inputs.topCPUProcesses = {{.id = 11, .name = "Firefox", .cpuUsage = 112.54},
                              {.id = 12, .name = "Visual Studio Code", .cpuUsage = 61.1},
                              {.id = 13, .name = "gnome-shell", .cpuUsage = 8.02}};
    inputs.enabledActions = {PanelAction::refresh, PanelAction::quit};
    return inputs;
}

namespace {

HomePageInputs loadingMachine() {
    HomePageInputs inputs;
    inputs.displaySummary = {MetricSeverity::ok, "Loading...", "Collecting system data..."};
    inputs.enabledActions = {PanelAction::refresh, PanelAction::quit};
    return inputs;
}

HomePageInputs elevatedMachine() {
    HomePageInputs inputs = calmMachine();
    inputs.displaySummary = {MetricSeverity::info, "RAM 84%",
                             "Memory usage is at 84%, above the normal threshold."};
    inputs.cpuInfo.usagePercentage = 80;
    inputs.gpuInfo.usagePercentage = 90;
    inputs.memoryInfo.used = 13 * kGiB + kGiB * 44 / 100;
    inputs.storageInfo.front().usedSpace = 400 * kGB;
    inputs.storageInfo.front().availableSpace = 94 * kGB + 380'000'000;
    inputs.thermalState = 1;
    return inputs;
}

HomePageInputs alarmingMachine() {
    HomePageInputs inputs = calmMachine();
    inputs.displaySummary = {MetricSeverity::warning, "CPU 97%",
                             "CPU usage is at 97%, above the high threshold."};
    inputs.cpuInfo.usagePercentage = 97.4;
    inputs.gpuInfo.usagePercentage = 99;
    inputs.memoryInfo.used = 15 * kGiB + kGiB / 2;
    inputs.storageInfo.front().usedSpace = 467 * kGB + 120'000'000;
    inputs.storageInfo.front().availableSpace = 27 * kGB + 260'000'000;
    inputs.systemInfo.uptime = 9 * 86400;
    inputs.remindRestartAfterWeek = true;
    inputs.thermalState = 3;
    inputs.batteryInfo.healthCondition = "Service Battery";
    inputs.enabledActions = {PanelAction::refresh,          PanelAction::quit,
                             PanelAction::showSettings,     PanelAction::openActivityMonitor,
                             PanelAction::showMemoryDetail, PanelAction::showPerformanceDetail};
    return inputs;
}

HomePageInputs longMachine() {
    HomePageInputs inputs = alarmingMachine();
    inputs.displaySummary.popoverText =
        "Storage usage is at 1234567%, above the high threshold, and this sentence goes on.";
    inputs.systemInfo.uptime = 99999 * 86400.0;
    inputs.cpuInfo.usagePercentage = 1e300;
    inputs.memoryInfo.total = std::numeric_limits<std::uint64_t>::max();
    inputs.memoryInfo.used = std::numeric_limits<std::uint64_t>::max();
    inputs.storageInfo.front().name =
        "a volume whose owner gave it a very long name, with <b>markup</b> & \u6f22\u5b57";
    inputs.storageInfo.front().totalSpace = std::numeric_limits<std::int64_t>::max();
    inputs.storageInfo.front().usedSpace = std::numeric_limits<std::int64_t>::max();
    inputs.storageInfo.front().availableSpace = 0;
    inputs.batteryInfo.health = std::numeric_limits<std::int64_t>::max();
    inputs.batteryInfo.cycleCount = std::numeric_limits<std::int64_t>::min();
    inputs.topCPUProcesses = {
        {.id = 1, .name = std::string(300, 'W'), .cpuUsage = 1e15},
        {.id = 2, .name = "", .cpuUsage = 0},
        {.id = 3, .name = "\u0645\u062a\u0635\u0641\u062d 42 \U0001F600", .cpuUsage = 3}};
    return inputs;
}

/// Sets every usage to `less` percentage points below its high threshold with `isHigh`, otherwise
/// below its normal threshold.
void setUsages(HomePageInputs& inputs, bool isHigh, double less) {
    const MetricThresholds& at = inputs.thresholds;
    inputs.cpuInfo.usagePercentage = (isHigh ? at.cpuHigh : at.cpuNormal) - less;
    inputs.gpuInfo.usagePercentage = (isHigh ? at.gpuHigh : at.gpuNormal) - less;
    constexpr double parts = 10000;
    const double memory = (isHigh ? at.memoryHigh : at.memoryNormal) - less;
    inputs.memoryInfo.total = static_cast<std::uint64_t>(parts);
    inputs.memoryInfo.used = static_cast<std::uint64_t>(std::llround(memory / 100 * parts));
    const double storage = (isHigh ? at.storageHigh : at.storageNormal) - less;
    constexpr std::int64_t space = 1'000'000 * kGB;
    StorageInfo& volume = inputs.storageInfo.front();
    volume.totalSpace = space;
    volume.usedSpace = static_cast<std::int64_t>(std::llround(storage / 100 * parts)) *
                       (space / static_cast<std::int64_t>(parts));
    volume.availableSpace = space / 2;
}

/// Adds states with missing or unusual values, and with values exactly at a limit or just beside
/// it.
void addBounds(std::vector<HomeState>& states) {
    constexpr std::int64_t lowSpace = std::int64_t{20} << 30;
    const auto add = [&states](std::string_view name, auto change) {
        HomePageInputs inputs = calmMachine();
        change(inputs);
        states.push_back({name, inputs});
    };
    add("checking_battery", [](HomePageInputs& in) {
        in.batteryDetectionComplete = false;
        in.batteryInfo = {};
    });
    add("registry_battery",
        [](HomePageInputs& in) { in.batteryInfo.healthSource = BatteryHealthSource::ioRegistry; });
    add("blank_condition", [](HomePageInputs& in) { in.batteryInfo.healthCondition = " \t\n"; });
    add("no_volume", [](HomePageInputs& in) { in.storageInfo.clear(); });
    add("volume_without_space", [](HomePageInputs& in) {
        in.storageInfo.front().totalSpace = 0;
        in.storageInfo.front().availableSpace = 0;
    });
    add("memory_without_total", [](HomePageInputs& in) { in.memoryInfo.total = 0; });
    add("below_normal", [](HomePageInputs& in) { setUsages(in, false, 0.01); });
    add("at_normal", [](HomePageInputs& in) { setUsages(in, false, 0); });
    add("below_high", [](HomePageInputs& in) { setUsages(in, true, 0.01); });
    add("at_high", [](HomePageInputs& in) { setUsages(in, true, 0); });
    add("at_high_collecting", [](HomePageInputs& in) {
        setUsages(in, true, 0);
        in.topCPUProcesses.clear();
    });
    add("above_hundred", [](HomePageInputs& in) {
        in.cpuInfo.usagePercentage = 100.04;
        in.gpuInfo.usagePercentage = -3;
    });
    add("no_number", [](HomePageInputs& in) {
        in.cpuInfo.usagePercentage = std::numeric_limits<double>::quiet_NaN();
        in.gpuInfo.usagePercentage = std::numeric_limits<double>::infinity();
    });
    add("hour_to_come", [](HomePageInputs& in) { in.systemInfo.uptime = 3599.9; });
    add("hour", [](HomePageInputs& in) { in.systemInfo.uptime = 3600; });
    add("week_without_reminder", [](HomePageInputs& in) { in.systemInfo.uptime = 604800; });
    add("week_to_come", [](HomePageInputs& in) {
        in.systemInfo.uptime = 604799.9;
        in.remindRestartAfterWeek = true;
    });
    add("low_space", [](HomePageInputs& in) {
        in.storageInfo.front().totalSpace = 10 * lowSpace - 10;
        in.storageInfo.front().availableSpace = lowSpace;
        in.storageInfo.front().usedSpace = lowSpace;
    });
    add("low_space_to_come", [](HomePageInputs& in) {
        in.storageInfo.front().totalSpace = 10 * lowSpace;
        in.storageInfo.front().availableSpace = lowSpace + 1;
        in.storageInfo.front().usedSpace = lowSpace;
    });
    add("tenth_free", [](HomePageInputs& in) {
        in.storageInfo.front().totalSpace = 1000 * kGB;
        in.storageInfo.front().availableSpace = 100 * kGB;
    });
    add("more_than_a_tenth_free", [](HomePageInputs& in) {
        in.storageInfo.front().totalSpace = 1000 * kGB;
        in.storageInfo.front().availableSpace = 100 * kGB + 1;
    });
    add("serious", [](HomePageInputs& in) { in.thermalState = 2; });
    add("unknown_thermals", [](HomePageInputs& in) { in.thermalState = 4; });
}

}  // namespace

std::vector<HomeState> homeStates() {
    std::vector<HomeState> states{{"loading", loadingMachine()},
                                  {"calm", calmMachine()},
                                  {"info", elevatedMachine()},
                                  {"warning", alarmingMachine()},
                                  {"long", longMachine()}};
    HomePageInputs inputs = calmMachine();
    inputs.gpuInfo = {};
    states.push_back({"no_gpu", inputs});

    inputs = calmMachine();
    inputs.batteryInfo = {};
    states.push_back({"no_battery", inputs});

    inputs = calmMachine();
    inputs.batteryInfo.healthSource = BatteryHealthSource::qualitative;
    inputs.batteryInfo.cycleCount = {};
    inputs.batteryInfo.healthCondition = "";
    states.push_back({"unknown_battery", inputs});

    inputs = calmMachine();
    inputs.storageInfo.front().availableSpace = 12 * kGB;
    states.push_back({"low_storage", inputs});

    inputs = calmMachine();
    inputs.systemInfo.uptime = 604800;
    inputs.remindRestartAfterWeek = true;
    states.push_back({"reminder", inputs});
    addBounds(states);
    return states;
}

}  // namespace tarnwick::testing
