// SPDX-License-Identifier: MIT
// The machine's battery from the kernel's power supplies.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/power_sources.h"

namespace tarnwick::platform {

/// Reads the tree below a root: the system's packs as one battery, never those of peripherals.
/// Opens each file anew, because packs come and go and are asked for rarely; keeps nothing between
/// calls.
class LinuxPowerSources final : public PowerSources, public BatteryHealth {
 public:
    explicit LinuxPowerSources(std::string root = "/");

    /// One source, or none on a machine without a battery.
    std::optional<std::vector<PowerSourceDescription>> descriptions() override;
    std::optional<std::int64_t> cycleCount() override;
    std::string identity() override;
    /// Absent while there is no battery. Has no condition, which descriptions() tell at any moment.
    std::optional<HealthReading> readHealth() override;

 private:
    const std::string folder_;
};

}  // namespace tarnwick::platform
