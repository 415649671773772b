// SPDX-License-Identifier: MIT
#include "platform/linux/kernel/zram_devices.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

namespace tarnwick::platform {

namespace {

constexpr double kSecondsBetweenSearches = 60;

}  // namespace

std::optional<std::uint64_t> parseZramMemoryUsed(std::string_view mmStat) {
    std::uint64_t value = 0;
    for (int column = 0; column < 3; ++column) {
        mmStat.remove_prefix(std::min(mmStat.find_first_not_of(' '), mmStat.size()));
        const char* const end = mmStat.data() + mmStat.size();
        const auto [rest, error] = std::from_chars(mmStat.data(), end, value);
        if (error != std::errc() || rest == end || (*rest != ' ' && *rest != '\n')) {
            return std::nullopt;
        }
        mmStat.remove_prefix(static_cast<std::size_t>(rest - mmStat.data()));
    }
    return value;
}

std::vector<std::string_view> parseZramSwaps(std::string_view swaps) {
    std::vector<std::string_view> names;
    std::size_t end = 0;
    while ((end = swaps.find('\n')) != std::string_view::npos) {
        const std::string_view path = swaps.substr(0, swaps.substr(0, end).find_first_of(" \t"));
        swaps.remove_prefix(end + 1);
        const std::string_view name = path.substr(path.rfind('/') + 1);
        if (path.starts_with('/') && name.starts_with("zram") && name.size() > 4 &&
            name.find_first_not_of("0123456789", 4) == std::string_view::npos) {
            names.push_back(name);
        }
    }
    return names;
}

ZramDevices::ZramDevices(const std::string& root) : root_(root) {}

std::uint64_t ZramDevices::memoryUsed(double now, std::uint64_t swapTotal) {
    const double age = now - searchedAt_;
    if (!searched_ || age < 0 || age >= kSecondsBetweenSearches ||
        swapTotal != searchedSwapTotal_) {
        findDevices();
        searched_ = true;
        searchedAt_ = now;
        searchedSwapTotal_ = swapTotal;
    }
    std::uint64_t sum = 0;
    for (KeptFile& statistics : statistics_) {
        const std::uint64_t used = parseZramMemoryUsed(statistics.read().value_or("")).value_or(0);
        sum += std::min(used, std::numeric_limits<std::uint64_t>::max() - sum);
    }
    return sum;
}

void ZramDevices::findDevices() {
    statistics_.clear();
    const std::string swaps = readWholeFile(belowRoot(root_, "proc/swaps")).value_or("");
    for (const std::string_view name : parseZramSwaps(swaps)) {
        statistics_.emplace_back(belowRoot(root_, "sys/block/" + std::string(name) + "/mm_stat"),
                                 256);
    }
}

}  // namespace tarnwick::platform
