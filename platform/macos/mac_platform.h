// SPDX-License-Identifier: MIT
// Makes all objects of the machine.
#pragma once

#include "platform/platform.h"

namespace tarnwick::platform {

/// All objects live as long as the process, because background work that is stuck when the program
/// ends may still use them.
Platform makeMacPlatform();

}  // namespace tarnwick::platform
