// SPDX-License-Identifier: MIT
// Volumes with answers from a test.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/testing/answers.h"
#include "platform/volumes.h"

namespace tarnwick::platform::testing {

/// Until a test says otherwise the home directory is "/home/user" and both sources fail. Any
/// thread.
class ScriptedVolumes final : public Volumes {
 public:
    using Values = std::variant<VolumeResourceValues, VolumeError>;

    /// One member for each operation.
    struct {
        Answers<std::string> homeDirectoryForCurrentUser{"/home/user"};
        Answers<Values> resourceValues{VolumeError{"no such volume"}};
        Answers<std::optional<FileSystemAttributes>> attributesOfFileSystemForPath{std::nullopt};
    } answers;

    /// Operations called since the start or the last clearCalls(), in order, each as its name and,
    /// where it takes one, a space and the path.
    std::vector<std::string> calls() const { return calls_.all(); }
    void clearCalls() { calls_.clear(); }

    std::string homeDirectoryForCurrentUser() override;
    std::variant<VolumeResourceValues, VolumeError> resourceValues(
        const std::string& path) override;
    std::optional<FileSystemAttributes> attributesOfFileSystemForPath(
        const std::string& path) override;

 private:
    CallRecord calls_;
};

}  // namespace tarnwick::platform::testing
