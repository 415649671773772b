// SPDX-License-Identifier: MIT
#include "platform/linux/kernel/proc_meminfo.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>

namespace tarnwick::platform {

namespace {

struct Line {
    std::string_view key;
    std::optional<std::uint64_t> MemInfo::*field;
};

constexpr std::array<Line, 11> kLines = {{
    {"MemTotal:", &MemInfo::memTotal},
    {"MemFree:", &MemInfo::memFree},
    {"MemAvailable:", &MemInfo::memAvailable},
    {"Buffers:", &MemInfo::buffers},
    {"Cached:", &MemInfo::cached},
    {"SwapTotal:", &MemInfo::swapTotal},
    {"SwapFree:", &MemInfo::swapFree},
    {"Zswap:", &MemInfo::zswap},
    {"AnonPages:", &MemInfo::anonPages},
    {"Shmem:", &MemInfo::shmem},
    {"SReclaimable:", &MemInfo::sReclaimable},
}};

// More than any machine has. Sums of a few such figures still fit.
constexpr std::uint64_t kLargestFigure = std::uint64_t{1} << 60;

// Bytes of a text such as " 24684096 kB".
std::optional<std::uint64_t> bytesOf(std::string_view value) {
    value.remove_prefix(std::min(value.find_first_not_of(' '), value.size()));
    std::uint64_t kibibytes = 0;
    const char* const end = value.data() + value.size();
    const auto [rest, error] = std::from_chars(value.data(), end, kibibytes);
    if (error != std::errc() ||
        std::string_view(rest, static_cast<std::size_t>(end - rest)) != " kB" ||
        kibibytes > kLargestFigure / 1024) {
        return std::nullopt;
    }
    return kibibytes * 1024;
}

}  // namespace

MemInfo parseMemInfo(std::string_view text) {
    MemInfo info;
    std::size_t found = 0;
    while (found < kLines.size()) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos) {
            break;
        }
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end + 1);
        for (const Line& wanted : kLines) {
            // Compares the first letter first, because most lines are not wanted.
            if (line.starts_with(wanted.key.front()) && line.starts_with(wanted.key)) {
                info.*wanted.field = bytesOf(line.substr(wanted.key.size()));
                ++found;
                break;
            }
        }
    }
    return info;
}

std::optional<SwapUsage> swapUsageOf(const MemInfo& info) {
    if (!info.swapTotal || !info.swapFree) {
        return std::nullopt;
    }
    const std::uint64_t available = std::min(*info.swapTotal, *info.swapFree);
    return SwapUsage{
        .total = *info.swapTotal, .available = available, .used = *info.swapTotal - available};
}

}  // namespace tarnwick::platform
