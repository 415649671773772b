// SPDX-License-Identifier: MIT
// The small texts that a graphics driver publishes about a card.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::platform {

/// What kind of device a graphics card is. Unknown parts are empty.
struct GraphicsIdentity {
    /// The kernel's driver, for instance "amdgpu".
    std::string driver{};
    /// Place on the bus, for instance "0000:03:00.0".
    std::string slot{};
    /// Four hexadecimal digits in lower case each.
    std::string vendor{};
    std::string device{};
    /// Base class and subclass, for instance 0x0300; 0 when unknown.
    std::uint32_t deviceClass = 0;

    bool operator==(const GraphicsIdentity&) const = default;
};

/// The identity in a device's `uevent` text.
GraphicsIdentity parseGraphicsIdentity(std::string_view uevent);

/// A whole number with a line break behind it. Absent for damaged or unfinished text.
std::optional<std::uint64_t> parseCount(std::string_view text);

/// A driver's figure as a percentage 0...100. Firmware that averages overshoots a little, so up to
/// 120 is 100. Absent above that and below 0: such a figure means that nothing was measured.
std::optional<double> percentageOf(double figure);

/// A percentage, as above, followed by a line break. Absent for anything else.
std::optional<double> parsePercentage(std::string_view text);

/// The averaged activity of the graphics engines in amdgpu's table `gpu_metrics`, percent. Absent
/// if the table does not tell it, is damaged or has an unknown layout, and for tables of graphics
/// inside a processor: some of them count in percent and some in hundredths. There the driver makes
/// `gpu_busy_percent` of the same average and knows the unit.
std::optional<double> parseAverageActivity(std::string_view table);

/// How long the engines of one class have worked, counted up from some moment.
struct EngineTime {
    std::string engine{};
    /// Nanoseconds, or steps of the clock that `total` counts as well.
    std::uint64_t busy = 0;
    /// All steps of that clock; 0 if `busy` is in nanoseconds.
    std::uint64_t total = 0;
    /// Number of engines in the class, at least 1.
    std::uint64_t capacity = 1;

    bool operator==(const EngineTime&) const = default;
};

/// What one client of a card has had the engines do.
struct ClientTimes {
    /// Identifier, unique for each card.
    std::uint64_t client = 0;
    std::vector<EngineTime> engines{};

    bool operator==(const ClientTimes&) const = default;
};

/// The times in the text of `/proc/PID/fdinfo/N`. Absent if the descriptor is no graphics card.
/// Engines whose share of the time cannot be told are left out.
std::optional<ClientTimes> parseClientTimes(std::string_view fdinfo);

/// The times of the card's queues in the text of v3d's `gpu_stats`, without that of the processor.
std::vector<EngineTime> parseQueueTimes(std::string_view stats);

/// The text up to the first line break, without white space at its ends.
std::string_view firstLineOf(std::string_view text);

/// A bus slot "0000:0b:00.0" as the number that the compute driver gives a device: the bus in the
/// upper and device and function in the lower byte. Absent for any other text.
std::optional<std::uint32_t> locationOfSlot(std::string_view slot);

/// The domain of a bus slot, 0 for "0000:0b:00.0". Absent for any other text.
std::optional<std::uint32_t> domainOfSlot(std::string_view slot);

/// The figure `name` of a text with one "name value" pair on each line. Absent if it is missing or
/// damaged.
std::optional<std::uint64_t> parseNamedCount(std::string_view text, std::string_view name);

}  // namespace tarnwick::platform
