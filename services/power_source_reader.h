// SPDX-License-Identifier: MIT
// The live state of the battery from the power source descriptions.
#pragma once

#include <optional>

#include "core/records/metric_records.h"
#include "platform/power_sources.h"

namespace tarnwick {

/// The first internal battery. Absent when the system gives no answer; a record with `hasBattery`
/// false when it says that there is no battery. Any thread.
std::optional<BatteryInfo> readPowerSources(platform::PowerSources& sources);

}  // namespace tarnwick
