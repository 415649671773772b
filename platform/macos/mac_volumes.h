// Capacity of volumes from URL resource values and the file manager.
#pragma once

#include "platform/volumes.h"

namespace tarnwick::platform {

class MacVolumes final : public Volumes {
 public:
    std::string homeDirectoryForCurrentUser() override;
    std::variant<VolumeResourceValues, VolumeError> resourceValues(
        const std::string& path) override;
    std::optional<FileSystemAttributes> attributesOfFileSystemForPath(
        const std::string& path) override;
};

}  // namespace tarnwick::platform
