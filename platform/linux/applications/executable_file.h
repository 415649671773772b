// SPDX-License-Identifier: MIT
// Finds programs.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tarnwick::platform {

/// The file of the program `name`. An absolute path stands for itself; for any other name it is the
/// file in the first folder of `list` (the PATH) that has an executable file of this name. All
/// paths are below `root`, including the returned one. Empty if there is none.
std::filesystem::path findExecutable(std::string_view name, std::string_view list,
                                     const std::filesystem::path& root = "/");

}  // namespace tarnwick::platform
