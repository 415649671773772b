// The small texts that a graphics driver publishes about a card.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

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

/// A percentage 0...100 followed by a line break. Absent for anything else: a driver that reports
/// more than 100 does not know.
std::optional<double> parsePercentage(std::string_view text);

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
