// SPDX-License-Identifier: MIT
// Parses /proc/stat.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace tarnwick::platform {

/// Cumulative ticks of one processor that is online.
struct ProcessorTicks {
    /// Time given to guests is already inside user and nice.
    enum Column { user, nice, system, idle, ioWait, irq, softIrq, steal, columnCount };

    /// The kernel's number of the processor. Offline processors leave gaps.
    std::uint32_t processor = 0;
    /// 0 for what an old kernel does not tell.
    std::array<std::uint64_t, columnCount> columns{};

    bool operator==(const ProcessorTicks&) const = default;
};

/// Fills `processors` from the "cpuN" lines, in the kernel's order. False, with `processors` empty,
/// when there is none or one of them is damaged or cut short: with a processor left out, the
/// others would be compared with the wrong earlier counters.
bool parseProcessorTicks(std::string_view text, std::vector<ProcessorTicks>& processors);

/// "btime": when the machine booted, seconds since 1970. Absent when it is missing, damaged or cut
/// short.
std::optional<std::int64_t> parseBootTime(std::string_view text);

}  // namespace tarnwick::platform
