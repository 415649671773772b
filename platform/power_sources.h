// SPDX-License-Identifier: MIT
// What the machine knows about its batteries.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/timed_source.h"

namespace tarnwick::platform {

/// One power source, as `IOPSGetPowerSourceDescription` describes it. A field is absent where the
/// description lacks the key or holds a value of another type under it.
struct PowerSourceDescription {
    /// "Type": "InternalBattery" for a battery that powers the machine itself.
    std::optional<std::string> type{};
    /// "Current Capacity": the charge level, percent.
    std::optional<std::int64_t> currentCapacity{};
    /// "Is Charging".
    std::optional<bool> isCharging{};
    /// "Power Source State": "AC Power" or "Battery Power".
    std::optional<std::string> powerSourceState{};
    /// "Time to Empty", minutes; -1 while it is still being estimated.
    std::optional<std::int64_t> timeToEmpty{};
    /// "Time to Full Charge", minutes; -1 while it is still being estimated.
    std::optional<std::int64_t> timeToFullCharge{};
    /// "BatteryHealthCondition": a word or a phrase.
    std::optional<std::string> batteryHealthCondition{};
    /// Watts that it gives while discharging or takes while charging; only some systems report it.
    std::optional<double> power{};

    bool operator==(const PowerSourceDescription&) const = default;
};

/// Any thread. Every operation releases its temporary resources before it returns.
class PowerSources {
 public:
    virtual ~PowerSources() = default;

    /// `IOPSCopyPowerSourcesInfo`, `IOPSCopyPowerSourcesList`: the sources that have a description,
    /// in the system's order. Absent when the system does not say; a machine without any has an
    /// empty list.
    virtual std::optional<std::vector<PowerSourceDescription>> descriptions() = 0;
    /// "CycleCount" of the battery's device registry entry. Absent when there is none.
    virtual std::optional<std::int64_t> cycleCount() = 0;
    /// Another text when another battery was put in; empty when the system does not say.
    virtual std::string identity() { return {}; }
};

/// How healthy the battery is.
struct HealthReading {
    /// Capacity relative to the design, percent, 1 to 100; absent when unknown.
    std::optional<std::int64_t> health{};
    /// The condition word; absent when unknown.
    std::optional<std::string> condition{};

    bool operator==(const HealthReading&) const = default;
};

/// The exact health of the battery. Any thread.
class BatteryHealth {
 public:
    virtual ~BatteryHealth() = default;

    /// Blocks, perhaps for seconds. Absent if the health could not be read; a reading without
    /// figures if it was read and the machine reports none.
    virtual std::optional<HealthReading> readHealth() = 0;
    /// Seconds after which a reading that has not come back hangs.
    virtual double longestReading() const { return kSourcePatience; }
};

}  // namespace tarnwick::platform
