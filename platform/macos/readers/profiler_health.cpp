// SPDX-License-Identifier: MIT
#include "platform/macos/readers/profiler_health.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <system_error>
#include <utility>

namespace tarnwick {
namespace {

using nlohmann::json;

/// The percentage in a text such as "87%", at most 100. Absent without a figure of at least 1.
std::optional<std::int64_t> capacityIn(const std::string& text) {
    std::string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
                 [](char c) { return c >= '0' && c <= '9'; });
    std::int64_t value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [rest, error] = std::from_chars(digits.data(), end, value);
    if (error != std::errc() || rest != end || value < 1) {
        return std::nullopt;
    }
    return std::min<std::int64_t>(value, 100);
}

std::optional<std::string> textMember(const json& object, const char* name) {
    const auto member = object.find(name);
    if (member == object.end() || !member->is_string()) {
        return std::nullopt;
    }
    return member->get<std::string>();
}

}  // namespace

std::optional<HealthReading> decodeProfilerHealth(std::string_view text) {
    const json report = json::parse(text, nullptr, false);
    // A text that could not be parsed is not an object either.
    if (!report.is_object()) {
        return std::nullopt;
    }
    const auto items = report.find("SPPowerDataType");
    if (items == report.end() || !items->is_array() ||
        !std::all_of(items->begin(), items->end(), [](const json& i) { return i.is_object(); })) {
        return std::nullopt;
    }
    for (const json& item : *items) {
        const auto info = item.find("sppower_battery_health_info");
        if (info == item.end() || !info->is_object()) {
            continue;
        }
        HealthReading reading;
        reading.condition = textMember(*info, "sppower_battery_health");
        if (const auto capacity = textMember(*info, "sppower_battery_health_maximum_capacity")) {
            reading.health = capacityIn(*capacity);
        }
        return reading;
    }
    return HealthReading{};
}

ProfilerHealth::ProfilerHealth(ProcessRunner runner) : runner_(std::move(runner)) {}

std::optional<HealthReading> ProfilerHealth::readHealth() {
    const std::optional<std::string> report =
        runner_.run({.path = "/usr/sbin/system_profiler",
                     .arguments = {"SPPowerDataType", "-json"},
                     .outputLimit = 1'048'576,
                     .timeout = 3.0});
    return report ? decodeProfilerHealth(*report) : std::nullopt;
}

}  // namespace tarnwick
