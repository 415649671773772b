// SPDX-License-Identifier: MIT
#include "platform/testing/scripted_power_sources.h"

namespace tarnwick::platform::testing {

std::optional<std::vector<PowerSourceDescription>> ScriptedPowerSources::descriptions() {
    calls_.add("descriptions");
    return answers.descriptions.take();
}

std::optional<std::int64_t> ScriptedPowerSources::cycleCount() {
    calls_.add("cycleCount");
    return answers.cycleCount.take();
}

std::string ScriptedPowerSources::identity() {
    calls_.add("identity");
    return answers.identity.take();
}

std::optional<HealthReading> ScriptedPowerSources::readHealth() {
    calls_.add("readHealth");
    return answers.readHealth.take();
}

}  // namespace tarnwick::platform::testing
