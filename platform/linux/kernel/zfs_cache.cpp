// SPDX-License-Identifier: MIT
#include "platform/linux/kernel/zfs_cache.h"

#include <charconv>
#include <system_error>

namespace tarnwick::platform {

namespace {

constexpr double kSecondsBetweenLooks = 60;

// The figure of a line such as "c_min                           4    33554432".
std::optional<std::uint64_t> figure(std::string_view text, std::string_view name) {
    std::size_t end = 0;
    while ((end = text.find('\n')) != std::string_view::npos) {
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end + 1);
        if (!line.starts_with(name) || !line.substr(name.size()).starts_with(' ')) {
            continue;
        }
        const std::string_view last = line.substr(line.rfind(' ') + 1);
        std::uint64_t value = 0;
        const char* const lastEnd = last.data() + last.size();
        const auto [rest, error] = std::from_chars(last.data(), lastEnd, value);
        return error == std::errc() && rest == lastEnd ? std::optional(value) : std::nullopt;
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::uint64_t> parseZfsCache(std::string_view arcStats, std::uint64_t memTotal) {
    const std::optional<std::uint64_t> size = figure(arcStats, "size");
    const std::optional<std::uint64_t> least = figure(arcStats, "c_min");
    // Older versions do not tell the memory of the machine.
    if (!size || !least || figure(arcStats, "memory_all_bytes").value_or(0) > memTotal) {
        return std::nullopt;
    }
    return *size > *least ? *size - *least : 0;
}

ZfsCache::ZfsCache(const std::string& root)
    : statistics_(belowRoot(root, "proc/spl/kstat/zfs/arcstats"), 16384,
                  KeptFile::Delivery::inParts) {}

std::uint64_t ZfsCache::reclaimable(double now, std::uint64_t memTotal) {
    if (missingAt_ && now >= *missingAt_ && now - *missingAt_ < kSecondsBetweenLooks) {
        return 0;
    }
    const std::optional<std::string_view> text = statistics_.read();
    missingAt_ = text ? std::nullopt : std::optional(now);
    return text ? parseZfsCache(*text, memTotal).value_or(0) : 0;
}

}  // namespace tarnwick::platform
