// What the files of one power supply of the kernel mean.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/power_sources.h"

namespace tarnwick::platform {

/// A whole number with a line break, as the kernel's files give figures. Absent for anything else:
/// some drivers print "-NaN" or nothing at all for what they do not know.
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

    /// Takes in the text of one file; names that say nothing here are passed over.
    void take(std::string_view file, std::string_view text);

    /// A battery that powers the machine, not a peripheral's.
    bool isSystemBattery() const;
    /// Whether it supplies power from outside; absent for batteries, for supplies of peripherals
    /// and for those that do not say.
    std::optional<bool> suppliesFromOutside() const;
};

/// The files that tell what kind of supply it is.
std::span<const std::string_view> filesOfEverySupply();
/// The further files of a battery.
std::span<const std::string_view> filesOfBattery();

/// Charge level, percent, 0 to 100: as the driver says or, where it says nothing believable, from
/// the amounts. A battery charged above its full capacity is full. Absent when unknown.
std::optional<std::int64_t> chargeLevel(const PowerSupply& battery);

/// Capacity relative to the design, percent, 1 to 100; more than the design counts as the design.
/// Absent when unknown or more than twice the design, which no battery has.
std::optional<std::int64_t> healthPercentage(const PowerSupply& battery);

/// The condition word: a fault in the words that macOS has for it, any other word as it is. Empty
/// when unknown.
std::string conditionWord(const PowerSupply& battery);

/// A system battery as a power source. `outside` says whether a supply from outside is connected;
/// absent when none says. Times are absent where the present rate is unknown or 0, or would last
/// for more than ten days. Absent for an empty bay, and where the charge level is unknown: then
/// nothing of the battery can be believed.
std::optional<PowerSourceDescription> describe(const PowerSupply& battery,
                                               std::optional<bool> outside);

/// Charge cycles. 0 is what drivers say that do not know. Absent when unknown.
std::optional<std::int64_t> cyclesOf(const PowerSupply& battery);

}  // namespace tarnwick::platform
