// SPDX-License-Identifier: MIT
#include "platform/linux/power/linux_process_info.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace tarnwick::platform {

namespace {

constexpr double kLongestAgeOfZones = 60;
// The kernel allows no more trip points in a zone.
constexpr int kLargestTripCount = 32;

std::string_view firstLine(std::string_view text) {
    return text.substr(0, text.find('\n'));
}

TripPoints tripPointsOf(const std::string& zone) {
    TripPoints trips;
    for (int number = 0; number < kLargestTripCount; ++number) {
        const std::string trip = zone + "/trip_point_" + std::to_string(number);
        const std::optional<std::string> kind = readWholeFile(trip + "_type");
        if (!kind) {
            break;
        }
        const std::optional<std::string> text = readWholeFile(trip + "_temp");
        if (const std::optional<std::int64_t> temperature = parseTemperature(text.value_or(""))) {
            trips.add(firstLine(*kind), *temperature);
        }
    }
    return trips;
}

}  // namespace

LinuxProcessInfo::LinuxProcessInfo(std::string root, std::function<double()> sinceBoot)
    : root_(std::move(root)), sinceBoot_(std::move(sinceBoot)), onlineProcessors_(root_) {}

std::int64_t LinuxProcessInfo::activeProcessorCount() {
    if (const std::optional<std::int32_t> count = onlineProcessors_.count()) {
        return *count;
    }
    return std::max<std::int64_t>(1, ::sysconf(_SC_NPROCESSORS_ONLN));
}

std::int64_t LinuxProcessInfo::thermalState() {
    const double now = sinceBoot_();
    if (!zonesFoundAt_ || now < *zonesFoundAt_ || now - *zonesFoundAt_ >= kLongestAgeOfZones) {
        findZones();
        zonesFoundAt_ = now;
    }
    std::int64_t hottest = 0;
    std::int64_t state = kUnknownThermalState;
    for (Zone& zone : zones_) {
        // Zones of old kernels have no mode; they are always enabled.
        if (firstLine(zone.mode.read().value_or("")) == "disabled") {
            continue;
        }
        const std::optional<std::int64_t> temperature =
            parseTemperature(zone.temperature.read().value_or(""));
        if (!temperature || *temperature < hottest) {
            continue;
        }
        const std::int64_t own = thermalStateAt(*temperature, zone.trips);
        state = *temperature > hottest ? own : std::max(state, own);
        hottest = *temperature;
    }
    return state;
}

void LinuxProcessInfo::findZones() {
    zones_.clear();
    std::error_code error;
    std::filesystem::directory_iterator entry(belowRoot(root_, "sys/class/thermal"), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string& zone = entry->path().native();
        if (!entry->path().filename().native().starts_with("thermal_zone")) {
            continue;
        }
        const TripPoints trips = tripPointsOf(zone);
        // A temperature without trip points has no meaning, so it is never read.
        if (trips.any()) {
            zones_.push_back({.temperature = KeptFile(zone + "/temp", 64),
                              .mode = KeptFile(zone + "/mode", 64),
                              .trips = trips});
        }
    }
}

}  // namespace tarnwick::platform
