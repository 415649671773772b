// SPDX-License-Identifier: MIT
// Parses /proc/PID and /proc/PID/stat.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tarnwick::platform {

/// The process identifier that is written as `name` in /proc; 0 for any other name.
std::int32_t parseProcessIdentifier(std::string_view name);

struct ProcessStat {
    /// The text between the outermost brackets: any bytes, brackets and line breaks among them.
    /// Lies within the parsed text.
    std::string_view command;
    /// Cumulative times, clock ticks.
    std::uint64_t userTicks = 0;
    std::uint64_t systemTicks = 0;
    /// Resident memory, pages.
    std::uint64_t residentPages = 0;
};

/// Absent when the text is damaged or cut short. The kernel's own threads have no memory: 0 pages.
std::optional<ProcessStat> parseProcessStat(std::string_view text);

}  // namespace tarnwick::platform
