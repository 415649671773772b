// SPDX-License-Identifier: MIT
// Capacity and name of a volume from the file system that holds a path.
#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <variant>

#include "platform/linux/kernel/clocks.h"
#include "platform/linux/volumes/file_system_calls.h"
#include "platform/linux/volumes/mountinfo.h"
#include "platform/linux/volumes/volume_capacity.h"
#include "platform/volumes.h"

namespace tarnwick::platform {

/// Any thread.
class LinuxVolumes final : public Volumes {
 public:
    /// All paths are below `root`. `home` is the home directory that the user chose; if absent,
    /// $HOME. If it is not an absolute path, the password database decides. `sinceBoot` returns the
    /// time in seconds; the age of names is measured with it. Without `calls` the file systems are
    /// asked only where `root` is "/": those of another tree are not mounted here.
    explicit LinuxVolumes(std::string root = "/", std::optional<std::string> home = std::nullopt,
                          std::function<double()> sinceBoot = sinceBootSeconds,
                          std::optional<FileSystemCalls> calls = std::nullopt);

    /// "/" for an unknown user.
    std::string homeDirectoryForCurrentUser() override;
    /// Never an error: a volume that cannot be read has a name and no capacity. The name is the
    /// file system's label, else its mount point, else "/". It is looked up again after a minute,
    /// or when another file system is mounted there.
    ///
    /// There is no important-usage capacity. The available capacity is what this user may fill; the
    /// total excludes free space that is reserved for the system, and all that is other users'
    /// where the file system limits each.
    std::variant<VolumeResourceValues, VolumeError> resourceValues(
        const std::string& path) override;
    std::optional<FileSystemAttributes> attributesOfFileSystemForPath(
        const std::string& path) override;

 private:
    /// What is known of the volume that holds a path.
    struct Volume {
        std::string path;
        unsigned long fileSystem = 0;
        double foundAt = 0;
        std::string name;
        /// Absent where the mount table does not show it.
        std::optional<std::string> mountPoint{};
        /// Its device where it has limits for each user, else empty.
        std::string quotaDevice{};
    };

    /// Absent when the file system does not answer.
    std::optional<VolumeCapacity> capacityOf(const std::string& path);
    Volume volumeOf(const std::string& path, unsigned long fileSystem);
    std::optional<Mount> findMount(const std::string& path) const;

    const std::string root_;
    const std::string home_;
    const std::function<double()> sinceBoot_;
    const FileSystemCalls calls_;
    std::mutex lock_;
    /// Guarded by lock_.
    std::optional<Volume> known_;
};

}  // namespace tarnwick::platform
