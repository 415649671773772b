// SPDX-License-Identifier: MIT
// What the files of the kernel's power supplies mean.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/power_sources.h"

namespace tarnwick::platform {

/// A whole number followed by a line break, as in the kernel's files. Absent for anything else:
/// some drivers print "-NaN" or nothing for unknown figures.
std::optional<std::int64_t> parseFigure(std::string_view text);

/// The first line without blanks around it; empty unless it is printable ASCII, as all of the
/// kernel's words are.
std::string_view parseWord(std::string_view text);

/// One folder of the power supply class: the texts of its files.
class PowerSupply {
 public:
    void take(std::string_view file, std::string text);

    /// Absent when the driver does not have it. Energy and power, charge and current, and voltage
    /// are in millionths of watt-hour, watt, ampere-hour, ampere and volt; times in seconds.
    std::optional<std::int64_t> figure(std::string_view file) const;
    /// Empty when the driver does not have it.
    std::string_view word(std::string_view file) const;

    /// Whether this is a battery of the machine, not of a peripheral.
    bool isSystemBattery() const;
    /// Whether it supplies power from outside. Absent for batteries, uninterruptible supplies,
    /// supplies of peripherals and those that do not tell.
    std::optional<bool> suppliesFromOutside() const;

 private:
    std::string_view text(std::string_view file) const;

    std::map<std::string, std::string, std::less<>> texts_;
};

/// The files of a battery, besides those that identify the kind of supply: type, scope, online.
std::vector<std::string_view> filesOfBattery();

/// The machine's battery: its system batteries, without empty bays.
using Packs = std::vector<PowerSupply>;

/// Charge level, percent, 0 to 100. Of each pack the driver's figure; if that is missing or not
/// believable, computed from the amounts, where a pack above its full capacity counts as full. Of
/// several the mean, weighed by their full energy where all tell it. Packs of unknown level are
/// left out; absent if all are.
std::optional<std::int64_t> chargeLevel(const Packs& packs);

/// Capacity relative to the design, percent, 1 to 100: the driver's figure, else the full capacity
/// over the design; more than the design counts as the design. Of several packs the mean, weighed
/// by their design energy where all tell it. Packs that do not tell, or tell more than twice the
/// design, which no battery has, are left out; absent if all are.
std::optional<std::int64_t> healthPercentage(const Packs& packs);

/// The worst condition of a pack: a fault in the words that macOS has for it, any other word as it
/// is. Empty when unknown. A pack that is empty is not dead, although some gauges call it so.
std::string conditionWord(const Packs& packs);

/// Number of charge cycles, the largest of a pack. Absent if unknown; drivers report 0 if they do
/// not know it.
std::optional<std::int64_t> cyclesOf(const Packs& packs);

/// Differs when a pack was put in, taken out or exchanged. Empty without packs.
std::string identityOf(const Packs& packs);

/// The battery as one power source. `outside` tells whether outside power is connected; absent if
/// no supply tells.
///
/// All discharge if one pack does, else all charge if one does. Charging ends at the limits that
/// are set. The time is what the gauge tells, if there is one pack and no limit; else that of all
/// amounts at the present rate, absent if the rate is unknown or 0. A time above ten days is
/// unknown. The power is that of all packs together, absent if one does not tell, or if they
/// neither charge nor discharge.
PowerSourceDescription describe(const Packs& packs, std::optional<bool> outside);

}  // namespace tarnwick::platform
