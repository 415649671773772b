// SPDX-License-Identifier: MIT
#include "services/power_source_reader.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace tarnwick {
namespace {

/// Minutes to empty; if that is unknown, minutes to full; 0 if both are unknown.
std::int64_t minutesRemaining(const platform::PowerSourceDescription& source) {
    const std::int64_t toEmpty = source.timeToEmpty.value_or(0);
    return toEmpty > 0 ? toEmpty : std::max<std::int64_t>(0, source.timeToFullCharge.value_or(0));
}

}  // namespace

std::optional<BatteryInfo> readPowerSources(platform::PowerSources& sources) {
    const auto descriptions = sources.descriptions();
    if (!descriptions) {
        return std::nullopt;
    }
    const auto battery = std::ranges::find(*descriptions, "InternalBattery",
                                           &platform::PowerSourceDescription::type);
    BatteryInfo info;
    if (battery == descriptions->end()) {
        return info;
    }
    info.percentage = battery->currentCapacity.value_or(0);
    info.hasPercentage = battery->currentCapacity.has_value();
    info.isCharging = battery->isCharging.value_or(false);
    info.isPluggedIn = battery->powerSourceState == "AC Power";
    info.timeRemaining = minutesRemaining(*battery);
    info.healthCondition = battery->batteryHealthCondition.value_or("");
    info.hasBattery = true;
    info.cycleCount = sources.cycleCount();
    info.power = battery->power;
    return info;
}

}  // namespace tarnwick
