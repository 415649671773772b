// SPDX-License-Identifier: MIT
#include "platform/testing/scripted_volumes.h"

namespace tarnwick::platform::testing {

std::string ScriptedVolumes::homeDirectoryForCurrentUser() {
    calls_.add("homeDirectoryForCurrentUser");
    return answers.homeDirectoryForCurrentUser.take();
}

std::variant<VolumeResourceValues, VolumeError> ScriptedVolumes::resourceValues(
    const std::string& path) {
    calls_.add("resourceValues " + path);
    return answers.resourceValues.take();
}

std::optional<FileSystemAttributes> ScriptedVolumes::attributesOfFileSystemForPath(
    const std::string& path) {
    calls_.add("attributesOfFileSystemForPath " + path);
    return answers.attributesOfFileSystemForPath.take();
}

}  // namespace tarnwick::platform::testing
