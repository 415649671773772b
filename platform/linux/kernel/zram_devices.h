// SPDX-License-Identifier: MIT
// The memory that compressed swap devices occupy.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/files/kept_file.h"

namespace tarnwick::platform {

/// The memory that a zram device really uses, bytes: the third number of its mm_stat. Absent when
/// that is missing, damaged or cut short.
std::optional<std::uint64_t> parseZramMemoryUsed(std::string_view mmStat);

/// The names of the zram devices in /proc/swaps, such as "zram0".
std::vector<std::string_view> parseZramSwaps(std::string_view swaps);

/// One thread at a time.
class ZramDevices {
 public:
    explicit ZramDevices(const std::string& root);

    /// Bytes that all devices with swap on them together really use now, the largest number where
    /// they do not fit; a device that cannot be read adds nothing. A container that has no part in
    /// the swap of its host does not list the host's devices.
    /// `now` is in seconds, `swapTotal` in bytes. The devices are looked for again every minute and
    /// when the swap space changes.
    std::uint64_t memoryUsed(double now, std::uint64_t swapTotal);

 private:
    void findDevices();

    std::string root_;
    std::vector<KeptFile> statistics_;
    bool searched_ = false;
    double searchedAt_ = 0;
    std::uint64_t searchedSwapTotal_ = 0;
};

}  // namespace tarnwick::platform
