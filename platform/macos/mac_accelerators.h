// The graphics accelerators of the device registry.
#pragma once

#include "platform/accelerators.h"

namespace tarnwick::platform {

class MacAccelerators final : public Accelerators {
 public:
    MatchingServices matchingServices() override;
};

}  // namespace tarnwick::platform
