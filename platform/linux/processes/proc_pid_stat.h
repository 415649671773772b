// Parses /proc/PID/stat.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tarnwick::platform {

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
