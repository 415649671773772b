// SPDX-License-Identifier: MIT
#include "platform/testing/scripted_accelerators.h"

namespace tarnwick::platform::testing {

MatchingServices ScriptedAccelerators::matchingServices() {
    calls_.add("matchingServices");
    return answers.matchingServices.take();
}

}  // namespace tarnwick::platform::testing
