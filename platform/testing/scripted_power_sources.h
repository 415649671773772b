// SPDX-License-Identifier: MIT
// Batteries with figures from a test.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/power_sources.h"
#include "platform/testing/answers.h"

namespace tarnwick::platform::testing {

/// Until a test says otherwise the machine has no power source. Any thread.
class ScriptedPowerSources final : public PowerSources, public BatteryHealth {
 public:
    /// One member for each operation.
    struct {
        Answers<std::optional<std::vector<PowerSourceDescription>>> descriptions{
            std::vector<PowerSourceDescription>{}};
        Answers<std::optional<std::int64_t>> cycleCount{std::nullopt};
        Answers<std::string> identity{std::string()};
        Answers<std::optional<HealthReading>> readHealth{std::nullopt};
    } answers;

    /// What longestReading() tells.
    double healthTakes = kSourcePatience;

    /// Names of the operations called since the start or the last clearCalls(), in order.
    std::vector<std::string> calls() const { return calls_.all(); }
    void clearCalls() { calls_.clear(); }

    std::optional<std::vector<PowerSourceDescription>> descriptions() override;
    std::optional<std::int64_t> cycleCount() override;
    std::string identity() override;
    std::optional<HealthReading> readHealth() override;
    double longestReading() const override { return healthTakes; }

 private:
    CallRecord calls_;
};

}  // namespace tarnwick::platform::testing
