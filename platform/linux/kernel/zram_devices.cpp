#include "platform/linux/kernel/zram_devices.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <system_error>

#include "platform/linux/kernel/proc_meminfo.h"

namespace tarnwick::platform {

namespace {

constexpr double kSecondsBetweenSearches = 60;

}  // namespace

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
