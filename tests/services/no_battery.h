// SPDX-License-Identifier: MIT
// The battery service of a machine without a battery.
#pragma once

#include <memory>
#include <optional>

#include "services/battery_service.h"

namespace tarnwick {

inline std::shared_ptr<BatteryService> noBattery(platform::UserDefaults& store) {
    return std::make_shared<BatteryService>(
        store, [] { return std::optional<HealthReading>(); }, [] { return BatteryInfo{}; },
        [] { return platform::Date{}; }, [] { return 0.0; });
}

}  // namespace tarnwick
