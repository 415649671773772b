// What the files of one power supply of the kernel mean.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/power_sources.h"

namespace tarnwick::platform {

/// A whole number followed by a line break, as in the kernel's files. Absent for anything else:
/// some drivers print "-NaN" or nothing for unknown figures.
std::optional<std::int64_t> parseFigure(std::string_view text);

/// The first line without blanks around it; empty unless it is printable ASCII, as all of the
/// kernel's words are.
std::string_view parseWord(std::string_view text);

/// One folder of the power supply class. A figure that a driver does not have is absent.
struct PowerSupply {
    // Words; empty when unknown.
    std::string type;
    /// "Device" for the supply of a peripheral, such as a mouse.
    std::string scope;
    std::string status;
    std::string health;
    /// 0 while a battery's bay is empty.
    std::optional<std::int64_t> present;
    /// Of a source of power: not 0 while it supplies.
    std::optional<std::int64_t> online;
    /// Percent.
    std::optional<std::int64_t> capacity;
    // A driver counts either energy, in millionths of a watt-hour, or charge, in millionths of an
    // ampere-hour.
    std::optional<std::int64_t> energyNow;
    std::optional<std::int64_t> energyFull;
    std::optional<std::int64_t> energyFullDesign;
    std::optional<std::int64_t> chargeNow;
    std::optional<std::int64_t> chargeFull;
    std::optional<std::int64_t> chargeFullDesign;
    // Rates, in millionths of a watt, an ampere and a volt. Some drivers give them a minus sign
    // while the battery discharges.
    std::optional<std::int64_t> powerNow;
    std::optional<std::int64_t> currentNow;
    std::optional<std::int64_t> voltageNow;
    std::optional<std::int64_t> cycleCount;

    /// Stores the content of one file. Unknown file names are ignored.
    void take(std::string_view file, std::string_view text);

    /// Whether this is a battery of the machine, not of a peripheral.
    bool isSystemBattery() const;
    /// Whether it supplies power from outside. Absent for batteries, uninterruptible supplies,
    /// supplies of peripherals and those that do not tell.
    std::optional<bool> suppliesFromOutside() const;
};

/// The files that identify the kind of supply.
std::span<const std::string_view> filesOfEverySupply();
/// The further files of a battery.
std::span<const std::string_view> filesOfBattery();

/// Charge level, percent, 0 to 100: the driver's figure; if that is missing or not believable,
/// computed from the amounts. A battery charged above its full capacity counts as full. Absent if
/// unknown.
std::optional<std::int64_t> chargeLevel(const PowerSupply& battery);

/// Capacity relative to the design, percent, 1 to 100; more than the design counts as the design.
/// Absent when unknown or more than twice the design, which no battery has.
std::optional<std::int64_t> healthPercentage(const PowerSupply& battery);

/// The condition word: a fault in the words that macOS has for it, any other word as it is. Empty
/// when unknown.
std::string conditionWord(const PowerSupply& battery);

/// A system battery as a power source. `outside` tells whether outside power is connected; absent
/// if no supply tells.
///
/// Times are absent if the present rate is unknown or 0, or if the time would exceed ten days. The
/// result is absent for an empty bay, and if the charge level is unknown: then no other figure of
/// the battery is believable either.
std::optional<PowerSourceDescription> describe(const PowerSupply& battery,
                                               std::optional<bool> outside);

/// Number of charge cycles. Absent if unknown; drivers report 0 if they do not know it.
std::optional<std::int64_t> cyclesOf(const PowerSupply& battery);

}  // namespace tarnwick::platform
