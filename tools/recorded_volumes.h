// The volumes of a recorded machine.
#pragma once

#include <optional>
#include <string>
#include <variant>

#include "platform/volumes.h"

namespace tarnwick::probe {

/// Knows the names of volumes, which a tree of files holds, and not their capacities, which no file
/// tells: the system would give those of the disk that the recording lies on.
class RecordedVolumes final : public platform::Volumes {
 public:
    /// `volumes` reads the recorded tree and must outlive this.
    explicit RecordedVolumes(platform::Volumes& volumes) : volumes_(volumes) {}

    std::string homeDirectoryForCurrentUser() override;
    std::variant<platform::VolumeResourceValues, platform::VolumeError> resourceValues(
        const std::string& path) override;
    std::optional<platform::FileSystemAttributes> attributesOfFileSystemForPath(
        const std::string& path) override;

 private:
    platform::Volumes& volumes_;
};

}  // namespace tarnwick::probe
