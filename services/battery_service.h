// What the battery does now and how healthy it is.
#pragma once

#include <memory>

#include "core/metric_records.h"

namespace tarnwick {

/// Any thread; never fails. This base knows no power source and reports a machine without a
/// battery; the seam where the battery sampler sits.
class BatteryService {
 public:
    virtual ~BatteryService() = default;

    /// The process-wide instance on the current platform, made on first use, never destroyed.
    static std::shared_ptr<BatteryService> shared();

    /// The quick path. `force` asks for a fresh reading.
    virtual BatteryInfo currentBatteryInfo(bool force);
    /// The path that may take seconds. `force` asks for a fresh health figure, not a cached one.
    virtual BatteryInfo batteryInfoWithHealth(bool force);
};

}  // namespace tarnwick
