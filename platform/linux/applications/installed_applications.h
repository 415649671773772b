// SPDX-License-Identifier: MIT
// The applications that are installed, by the names of their desktop entries.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tarnwick::platform {

/// Where the descriptions of a user's applications are, and in which languages to read them.
struct ApplicationSources {
    /// Folders that contain an "applications" folder. Earlier ones take precedence.
    std::vector<std::string> dataFolders;
    /// From localeSuffixes().
    std::vector<std::string> localeSuffixes;
};

/// The user's own data folder, those of the system, and those of Flatpak and Snap, which the
/// session's variables may lack. `environment` returns a variable's value or null.
ApplicationSources applicationSources(const std::function<const char*(const char*)>& environment);

/// Text of the desktop entry of this name, without ".desktop". The first of the data folders that
/// has one decides, even if it marks the application as removed. Absent if there is none. All
/// folders are below `root`.
std::optional<std::string> desktopEntryFile(const std::string& root,
                                            const std::vector<std::string>& dataFolders,
                                            const std::string& name);

}  // namespace tarnwick::platform
