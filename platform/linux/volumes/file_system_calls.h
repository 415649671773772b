// SPDX-License-Identifier: MIT
// What only the file system itself can tell.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::platform {

/// What the user may fill and has filled, bytes.
struct UserQuota {
    /// 0 means no limit.
    std::uint64_t softLimit = 0;
    std::uint64_t hardLimit = 0;
    std::uint64_t used = 0;
};

struct FileSystemCalls {
    /// The label of the file system that is mounted at this path; absent where it has none or does
    /// not tell.
    std::function<std::optional<std::string>(const std::string& mountPoint)> label;
    /// The quota of this user on this device; absent where there is none or the user may not ask.
    std::function<std::optional<UserQuota>(const std::string& device)> userQuota;
};

/// The calls of this machine.
FileSystemCalls systemCalls();

/// The label in the bytes of FS_IOC_GETFSLABEL, which end at a null byte or not at all. Absent when
/// it is empty.
std::optional<std::string> labelIn(std::string_view bytes);

}  // namespace tarnwick::platform
