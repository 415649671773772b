// Finding programs.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tarnwick::platform {

/// A file that this user may execute.
bool isExecutable(const std::filesystem::path& file);

/// The file of the program `name`: itself where it is an absolute path, else that of this name in
/// the first folder of `list` (the PATH) that has one to execute. Paths are below `root`, also the
/// one that is returned. Empty when there is none.
std::filesystem::path findExecutable(std::string_view name, std::string_view list,
                                     const std::filesystem::path& root = "/");

}  // namespace tarnwick::platform
