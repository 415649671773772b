// SPDX-License-Identifier: MIT
// The volumes of a recorded machine.
#pragma once

#include <optional>
#include <string>
#include <variant>

#include "platform/volumes.h"

namespace tarnwick::probe {

/// Gives the names of volumes, which the recorded files hold. Gives no capacities, because no file
/// holds them: the system would answer with those of the disk that holds the recording.
class RecordedVolumes final : public platform::Volumes {
 public:
    /// Requires: `volumes` reads the recorded tree and outlives this object.
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
