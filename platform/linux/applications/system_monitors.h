// SPDX-License-Identifier: MIT
// The system monitors that desktops come with.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tarnwick::platform {

/// An application that can be started.
struct InstalledProgram {
    /// Name of its desktop entry, without ".desktop".
    std::string entry;
    /// The program and its arguments; never empty. A name without a folder is looked for in the
    /// PATH.
    std::vector<std::string> command;
    /// The folder that it wants to run in; empty when it does not say.
    std::string folder;

    bool operator==(const InstalledProgram&) const = default;
};

/// The system monitor of the user's desktop (XDG_CURRENT_DESKTOP); else another one with windows;
/// else one for the terminal, if there is a terminal to run it in. Absent if there is none.
///
/// A monitor counts only if its desktop entry is installed and not removed (Hidden), and its
/// program exists. `environment` returns a variable's value or null; `root` is "/".
std::optional<InstalledProgram> findSystemMonitor(
    const std::function<const char*(const char*)>& environment,
    const std::filesystem::path& root = "/");

}  // namespace tarnwick::platform
