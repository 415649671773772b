// SPDX-License-Identifier: MIT
// Capacity of the volume that holds a path.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace tarnwick::platform {

/// The four URL resource values asked for together, and the mount point; each may be missing.
struct VolumeResourceValues {
    std::optional<std::string> name{};
    /// Bytes.
    std::optional<std::int64_t> totalCapacity{};
    /// Bytes; includes space that the system would free when needed. Only some systems report it.
    std::optional<std::int64_t> availableCapacityForImportantUsage{};
    /// Bytes.
    std::optional<std::int64_t> availableCapacity{};
    /// Absolute path at which the volume is mounted; only some systems report it.
    std::optional<std::string> mountPoint{};
};

/// Why the resource values could not be read.
struct VolumeError {
    /// In the user's language.
    std::string localizedDescription;
};

/// `attributesOfFileSystemForPath`; a member is missing when the system gives none of that type.
struct FileSystemAttributes {
    /// Bytes.
    std::optional<std::int64_t> size{};
    /// Bytes.
    std::optional<std::int64_t> freeSize{};
};

/// Any thread.
class Volumes {
 public:
    virtual ~Volumes() = default;

    /// Absolute path of the current user's home directory; need not exist.
    virtual std::string homeDirectoryForCurrentUser() = 0;
    virtual std::variant<VolumeResourceValues, VolumeError> resourceValues(
        const std::string& path) = 0;
    /// Absent on failure.
    virtual std::optional<FileSystemAttributes> attributesOfFileSystemForPath(
        const std::string& path) = 0;
};

}  // namespace tarnwick::platform
