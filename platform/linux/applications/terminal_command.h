// Running a program that needs a terminal.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::platform {

/// The command that runs `command` in a new window of a terminal that is found in the folders of
/// `list` (the PATH): the one that the user or the system has chosen before any other. `root` is
/// "/". Empty when there is none.
std::vector<std::string> terminalCommand(const std::vector<std::string>& command,
                                         std::string_view list,
                                         const std::filesystem::path& root = "/");

}  // namespace tarnwick::platform
