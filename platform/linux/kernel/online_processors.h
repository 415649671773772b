// SPDX-License-Identifier: MIT
// The number of online processors.
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/files/kept_file.h"

namespace tarnwick::platform {

/// The number of processors in a list of the kernel, such as "0-3,5" with a line break. Absent
/// when the text is damaged or cut short.
std::optional<std::int32_t> parseProcessorList(std::string_view text);

/// Any thread.
class OnlineProcessors {
 public:
    explicit OnlineProcessors(const std::string& root);

    /// Number of processors in the kernel's list of online processors; if that fails, number of
    /// processor lines in its statistics. Absent if both fail.
    std::optional<std::int32_t> count();

 private:
    std::mutex lock_;
    KeptFile list_;
    KeptFile statistics_;
};

}  // namespace tarnwick::platform
