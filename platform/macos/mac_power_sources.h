// The descriptions of the power sources, and the battery's entry in the device registry.
#pragma once

#include "platform/power_sources.h"

namespace tarnwick::platform {

class MacPowerSources final : public PowerSources {
 public:
    std::optional<std::vector<PowerSourceDescription>> descriptions() override;
    std::optional<std::int64_t> cycleCount() override;
};

}  // namespace tarnwick::platform
