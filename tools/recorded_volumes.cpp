// SPDX-License-Identifier: MIT
#include "tools/recorded_volumes.h"

#include <utility>

namespace tarnwick::probe {

std::string RecordedVolumes::homeDirectoryForCurrentUser() {
    return volumes_.homeDirectoryForCurrentUser();
}

std::variant<platform::VolumeResourceValues, platform::VolumeError> RecordedVolumes::resourceValues(
    const std::string& path) {
    auto answer = volumes_.resourceValues(path);
    if (auto* values = std::get_if<platform::VolumeResourceValues>(&answer)) {
        return platform::VolumeResourceValues{.name = std::move(values->name)};
    }
    return answer;
}

std::optional<platform::FileSystemAttributes> RecordedVolumes::attributesOfFileSystemForPath(
    const std::string&) {
    return std::nullopt;
}

}  // namespace tarnwick::probe
