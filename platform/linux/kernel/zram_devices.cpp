#include "platform/linux/kernel/zram_devices.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
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

ZramDevices::ZramDevices(const std::string& root) : folder_(belowRoot(root, "sys/block")) {}

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
    std::error_code error;
    std::filesystem::directory_iterator entry(folder_, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        if (entry->path().filename().native().starts_with("zram")) {
            statistics_.emplace_back((entry->path() / "mm_stat").native(), 256);
        }
    }
}

}  // namespace tarnwick::platform
