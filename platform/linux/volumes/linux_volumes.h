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
    /// All paths are below `root`. `home` stands for the user's own choice of a home directory
    /// ($HOME where none is given); it counts when it is an absolute path, else the password
    /// database does. `sinceBoot` gives the time in seconds by which the age of names is judged.
    explicit LinuxVolumes(std::string root = "/", std::optional<std::string> home = std::nullopt,
                          std::function<double()> sinceBoot = sinceBootSeconds);

    /// "/" for a user of whom nothing is known.
    std::string homeDirectoryForCurrentUser() override;
    /// Never an error: a volume that cannot be asked has a name and no capacity. The name is the
    /// file system's label, else its mount point, else "/"; it is looked up again after a minute or
    /// when another file system is mounted there. There is no important-usage capacity. Available
    /// is what a user without privileges may fill; the total leaves out what only the system may.
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
