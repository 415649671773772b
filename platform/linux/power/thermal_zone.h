// SPDX-License-Identifier: MIT
// What the temperature of one thermal zone means.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tarnwick::platform {

/// The temperatures at which a zone's cooling begins and at which the machine is in danger, in
/// thousandths of a degree Celsius. Of several of one kind the lowest counts.
struct TripPoints {
    /// The machine slows down.
    std::optional<std::int64_t> passive;
    /// Close to the limit.
    std::optional<std::int64_t> hot;
    /// The machine switches off.
    std::optional<std::int64_t> critical;

    /// Adds a trip point. Kinds without meaning for heat (fans) are ignored.
    void add(std::string_view kind, std::int64_t temperature);
    bool any() const { return passive || hot || critical; }

    bool operator==(const TripPoints&) const = default;
};

/// A temperature in thousandths of a degree, followed by a line break, as in the kernel's files.
/// Absent for damaged text and for impossible values: below 1 °C (unset or unplugged sensors read 0
/// or less) and from 150 °C (a sensor without power reads 255 °C).
std::optional<std::int64_t> parseTemperature(std::string_view text);

/// The state for the most severe trip point that `temperature` has reached: 1 fair: passive; 2
/// serious: hot; 3 critical: critical. 0 nominal: none is reached.
std::int64_t thermalStateAt(std::int64_t temperature, const TripPoints& trips);

}  // namespace tarnwick::platform
