#include "platform/linux/graphics/intel_source.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "platform/linux/graphics/graphics_files.h"

namespace tarnwick::platform {

namespace {

// Greatest number of groups or tiles; no card has more.
constexpr int kLargestGroupCount = 8;

bool exists(const std::string& path) {
    std::error_code error;
    return std::filesystem::exists(path, error);
}

/// False if i915 was told never to let the engines sleep: its counter then stands still.
bool mayEnginesSleep(const std::string& folder) {
    const std::optional<std::string> enabled = readWholeFile(folder + "/rc6_enable");
    return !enabled || parseCount(*enabled).value_or(0) != 0;
}

}  // namespace

IntelSource::IntelSource(const std::string& card) {
    for (int number = 0; number < kLargestGroupCount; ++number) {
        const std::string group = card + "/gt/gt" + std::to_string(number);
        if (exists(group + "/rc6_residency_ms") && mayEnginesSleep(group)) {
            add(group + "/rc6_residency_ms");
        }
    }
    // The xe driver has tiles, with their engine groups numbered across all tiles.
    for (int number = 0; number < kLargestGroupCount * kLargestGroupCount; ++number) {
        const std::string tile = std::to_string(number / kLargestGroupCount);
        const std::string group = std::to_string(number % kLargestGroupCount);
        const std::string counter =
            card + "/device/tile" + tile + "/gt" + group + "/gtidle/idle_residency_ms";
        if (exists(counter)) {
            add(counter);
        }
    }
    // Kernels before 5.19 have one counter at the card.
    if (groups_.empty() && exists(card + "/power/rc6_residency_ms") &&
        mayEnginesSleep(card + "/power")) {
        add(card + "/power/rc6_residency_ms");
    }
}

void IntelSource::add(const std::string& counter) {
    groups_.push_back({.idle = KeptFile(counter, 64), .residency = {}});
}

std::optional<GpuUtilization> IntelSource::read(double now) {
    std::optional<GpuUtilization> utilization;
    for (EngineGroup& group : groups_) {
        const std::optional<std::uint64_t> idle = parseCount(group.idle.read().value_or(""));
        if (!idle) {
            group.residency.forget();
            continue;
        }
        const std::optional<double> busy = group.residency.busyPercentage(*idle, now);
        if (!busy) {
            continue;
        }
        if (!utilization) {
            utilization.emplace();
        }
        utilization->device = std::max(utilization->device, *busy);
        if (&group == &groups_.front()) {
            utilization->renderer = *busy;
        }
    }
    return utilization;
}

void IntelSource::forget() {
    for (EngineGroup& group : groups_) {
        group.residency.forget();
    }
}

}  // namespace tarnwick::platform
