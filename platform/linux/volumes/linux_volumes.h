// Capacity and name of a volume from the file system that holds a path.
#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <variant>

#include "platform/linux/kernel/clocks.h"
#include "platform/volumes.h"

namespace tarnwick::platform {

/// Any thread.
class LinuxVolumes final : public Volumes {
 public:
    /// All paths are below `root`. `home` is the home directory that the user chose; if absent,
    /// $HOME. If it is not an absolute path, the password database decides. `sinceBoot` returns the
    /// time in seconds; the age of names is measured with it.
    explicit LinuxVolumes(std::string root = "/", std::optional<std::string> home = std::nullopt,
                          std::function<double()> sinceBoot = sinceBootSeconds);

    /// "/" for an unknown user.
    std::string homeDirectoryForCurrentUser() override;
    /// Never an error: a volume that cannot be read has a name and no capacity. The name is the
    /// file system's label, else its mount point, else "/". It is looked up again after a minute,
    /// or when another file system is mounted there.
    ///
    /// There is no important-usage capacity. The available capacity is what a user without
    /// privileges may fill; the total excludes free space that is reserved for the system.
    std::variant<VolumeResourceValues, VolumeError> resourceValues(
        const std::string& path) override;
    std::optional<FileSystemAttributes> attributesOfFileSystemForPath(
        const std::string& path) override;

 private:
    struct KnownName {
        std::string path;
        unsigned long fileSystem = 0;
        double foundAt = 0;
        std::string name;
    };

    std::string nameOfVolume(const std::string& path, unsigned long fileSystem);
    std::optional<std::string> findName(const std::string& path) const;

    const std::string root_;
    const std::string home_;
    const std::function<double()> sinceBoot_;
    std::mutex lock_;
    /// Guarded by lock_.
    std::optional<KnownName> known_;
};

}  // namespace tarnwick::platform
