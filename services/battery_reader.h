// SPDX-License-Identifier: MIT
// What a slow refresh asks about the battery.
#pragma once

#include "core/records/metric_records.h"

namespace tarnwick {

/// Any thread; never fails.
class BatteryReader {
 public:
    virtual ~BatteryReader() = default;

    /// The quick path. `force` asks for a fresh reading.
    virtual BatteryInfo currentBatteryInfo(bool force) = 0;
    /// The path that may take seconds. `force` asks for a fresh health figure, not a cached one.
    virtual BatteryInfo batteryInfoWithHealth(bool force) = 0;
};

}  // namespace tarnwick
