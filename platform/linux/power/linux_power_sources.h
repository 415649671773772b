// The machine's batteries from the kernel's power supplies.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/linux/power/power_supply.h"
#include "platform/power_sources.h"

namespace tarnwick::platform {

/// Reads the tree below a root: the system's batteries in the order of their names, never those of
/// peripherals. Cycles and health are those of the first. Opens each file anew, because batteries
/// come and go and are asked for rarely; keeps nothing between calls.
class LinuxPowerSources final : public PowerSources, public BatteryHealth {
 public:
    explicit LinuxPowerSources(std::string root = "/");

    std::optional<std::vector<PowerSourceDescription>> descriptions() override;
    std::optional<std::int64_t> cycleCount() override;
    /// From the capacity and the design; absent while there is no battery.
    std::optional<HealthReading> readHealth() override;

 private:
    /// The batteries that are present, and whether outside power is connected.
    struct Supplies {
        std::vector<PowerSupply> batteries;
        std::optional<bool> outside;
    };

    std::optional<Supplies> readSupplies() const;
    std::optional<PowerSupply> firstBattery() const;

    const std::string folder_;
};

}  // namespace tarnwick::platform
