// SPDX-License-Identifier: MIT
// The kernel's text files about network interfaces.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace tarnwick::platform {

/// One interface of /proc/net/dev.
struct NetworkDevice {
    /// Valid as a file name. Points into the parsed text.
    std::string_view name;
    /// Bytes received and sent.
    std::uint64_t received = 0;
    std::uint64_t sent = 0;
};

/// Every interface of /proc/net/dev in the order of the file. Absent if any part of the text is
/// damaged.
std::optional<std::vector<NetworkDevice>> parseNetworkDevices(std::string_view text);

/// /sys/class/net/NAME/ifindex, iflink or type. Absent for anything but a number above 0.
std::optional<std::uint32_t> parseInterfaceNumber(std::string_view text);

/// /sys/class/net/NAME/flags, such as "0x1003". Absent for anything else.
std::optional<std::uint32_t> parseInterfaceFlags(std::string_view text);

}  // namespace tarnwick::platform
