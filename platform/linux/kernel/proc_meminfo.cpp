#include "platform/linux/kernel/proc_meminfo.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <system_error>

namespace tarnwick::platform {

namespace {

struct Line {
    std::string_view key;
    std::optional<std::uint64_t> MemInfo::*field;
};

constexpr std::array<Line, 10> kLines = {{
    {"MemTotal:", &MemInfo::memTotal},
    {"MemFree:", &MemInfo::memFree},
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

std::uint32_t pagesOf(std::uint64_t bytes, std::uint64_t pageSize) {
    if (pageSize == 0) {
        return 0;
    }
    const std::uint64_t remainder = bytes % pageSize;
    const std::uint64_t pages = bytes / pageSize + (remainder >= pageSize - remainder ? 1 : 0);
    return static_cast<std::uint32_t>(
        std::min<std::uint64_t>(pages, std::numeric_limits<std::uint32_t>::max()));
}

std::optional<VMStatistics> vmStatistics(const MemInfo& info, std::uint64_t zramBytes,
                                         std::uint64_t pageSize) {
    if (!info.memTotal || *info.memTotal == 0 || !info.memFree || *info.memFree > *info.memTotal) {
        return std::nullopt;
    }
    const std::uint64_t total = *info.memTotal;
    const auto bytes = [total](const std::optional<std::uint64_t>& figure) {
        return figure && *figure <= total ? *figure : 0;
    };
    const std::uint64_t free = *info.memFree;
    const std::uint64_t shared = bytes(info.shmem);
    const std::uint64_t internal = bytes(info.anonPages) + shared;
    const std::uint64_t files = bytes(info.buffers) + bytes(info.cached) + bytes(info.sReclaimable);
    const std::uint64_t external = files - std::min(files, shared);
    const std::uint64_t compressor = bytes(info.zswap) + bytes(zramBytes);
    const std::uint64_t named = free + internal + external + compressor;

    VMStatistics statistics;
    statistics.free_count = pagesOf(free, pageSize);
    statistics.wire_count = pagesOf(total - std::min(total, named), pageSize);
    statistics.compressor_page_count = pagesOf(compressor, pageSize);
    statistics.external_page_count = pagesOf(external, pageSize);
    statistics.internal_page_count = pagesOf(internal, pageSize);
    return statistics;
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
