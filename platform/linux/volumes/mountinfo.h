// SPDX-License-Identifier: MIT
// Parses /proc/self/mountinfo.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::platform {

/// One mounted file system.
struct Mount {
    /// Absolute path.
    std::string mountPoint;
    /// A device's path for a file system on a device, several with colons between them where it
    /// names them all; any text for others.
    std::string source;
    /// Numbers of the device, such as "259:3"; they begin with "0:" where the file system is not
    /// that of one device.
    std::string device{};
    /// Of the file system, with commas between them.
    std::string options{};

    bool operator==(const Mount&) const = default;
};

/// The mount that holds `path` (absolute, without symbolic links): the one with the longest mount
/// point, and of several at the same point the last, which covers the others. Lines that are
/// damaged or cut short are passed over.
std::optional<Mount> mountOf(std::string_view mountInfo, std::string_view path);

/// Whether the file system keeps limits for each user.
bool hasUserQuota(const Mount& mount);

/// The text with its octal escapes (\040 for a space) decoded. Other characters stay.
std::string decodedOctalEscapes(std::string_view text);

}  // namespace tarnwick::platform
