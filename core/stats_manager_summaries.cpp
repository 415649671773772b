// SPDX-License-Identifier: MIT
// What the stats manager says about its records.
#include <cmath>
#include <cstddef>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

#include "core/records/text.h"
#include "core/stats_manager.h"

namespace tarnwick {
namespace {

/// The current readings, percent.
struct Readings {
    double cpu;
    double gpu;
    double memory;
    double storage;
    bool includeGPU;
};

Readings readings(const StatsManager& manager) {
    const auto storage = manager.primaryStorage();
    return {
        .cpu = manager.cpuInfo->usagePercentage,
        .gpu = manager.gpuInfo->usagePercentage,
        .memory = manager.memoryInfo->usagePercentage(),
        .storage = storage ? storage->usagePercentage() : 0,
        .includeGPU = manager.gpuInfo->isAvailable,
    };
}

MetricDisplaySummary loading() {
    return {MetricSeverity::ok, "Loading...", "Collecting system data..."};
}

std::vector<Candidate> candidates(const Readings& now, const UserSettings& settings) {
    return MetricSummaryResolver::candidates(now.includeGPU, settings.thresholds(), now.cpu,
                                             now.gpu, now.memory, now.storage);
}

/// The minute of the hour, 0 to 59, in the user's time zone; 0 for a time outside the calendar.
int minuteOfHour(double time) {
    // Fits std::time_t easily, and is far beyond every real clock.
    constexpr double kReach = 1e15;
    if (!(std::abs(time) < kReach)) {
        return 0;
    }
    const auto seconds = static_cast<std::time_t>(std::floor(time));
    // std::localtime follows a change of the system's time zone while the program runs. Its
    // reentrant variants are not required to.
    const std::tm* local = std::localtime(&seconds);
    return local ? local->tm_min : 0;
}

/// The short name and value of one metric; the next metric each minute.
std::string rotatingText(const Readings& now, int minute) {
    std::vector<std::string> entries;
    const auto add = [&entries](std::string_view name, double value) {
        entries.push_back(std::string(name) + ' ' + percentText(value, 0));
    };
    add("CPU", now.cpu);
    if (now.includeGPU) {
        add("GPU", now.gpu);
    }
    add("RAM", now.memory);
    add("Disk", now.storage);
    return entries[static_cast<std::size_t>(minute) % entries.size()];
}

}  // namespace

MetricDisplaySummary StatsManager::displaySummary() const {
    if (!hasCollectedData()) {
        return loading();
    }
    return MetricSummaryResolver::displaySummary(candidates(readings(*this), settings_));
}

MetricDisplaySummary StatsManager::menuBarSummary(double time) const {
    if (!hasCollectedData()) {
        return loading();
    }
    const Readings now = readings(*this);
    const auto found = candidates(now, settings_);
    if (found.empty()) {
        return {MetricSeverity::ok, rotatingText(now, minuteOfHour(time)), ""};
    }
    return MetricSummaryResolver::displaySummary(found);
}

}  // namespace tarnwick
