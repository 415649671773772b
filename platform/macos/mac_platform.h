// The whole machine.
#pragma once

#include "platform/platform.h"

namespace tarnwick::platform {

/// Everything of it lives as long as the process: background work that is stuck when the program
/// ends may still use it.
Platform makeMacPlatform();

}  // namespace tarnwick::platform
