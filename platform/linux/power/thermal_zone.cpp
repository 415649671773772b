// SPDX-License-Identifier: MIT
#include "platform/linux/power/thermal_zone.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace tarnwick::platform {

namespace {

constexpr std::int64_t kLowestTemperature = 1'000;
constexpr std::int64_t kUnbelievableTemperature = 150'000;

}  // namespace

void TripPoints::add(std::string_view kind, std::int64_t temperature) {
    const auto lower = [temperature](std::optional<std::int64_t>& trip) {
        trip = std::min(temperature, trip.value_or(temperature));
    };
    if (kind == "passive") {
        lower(passive);
    } else if (kind == "hot") {
        lower(hot);
    } else if (kind == "critical") {
        lower(critical);
    }
}

std::optional<std::int64_t> parseTemperature(std::string_view text) {
    std::int64_t temperature = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, temperature);
    if (error != std::errc() || rest == end || *rest != '\n' || temperature < kLowestTemperature ||
        temperature >= kUnbelievableTemperature) {
        return std::nullopt;
    }
    return temperature;
}

std::int64_t thermalStateAt(std::int64_t temperature, const TripPoints& trips) {
    const auto reached = [temperature](const std::optional<std::int64_t>& trip) {
        return trip && temperature >= *trip;
    };
    if (reached(trips.critical)) {
        return 3;
    }
    if (reached(trips.hot)) {
        return 2;
    }
    return reached(trips.passive) ? 1 : 0;
}

}  // namespace tarnwick::platform
