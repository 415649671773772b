// The applications that are installed, by the names of their desktop entries.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/applications/desktop_entry.h"

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

/// Looks up each entry once and remembers the result, including a missing entry, until forget().
/// One thread at a time.
class InstalledApplications {
 public:
    /// All folders are below `root`.
    InstalledApplications(std::string root, ApplicationSources sources);

    /// The entry of this name, without ".desktop". Absent when there is none or it is damaged.
    const std::optional<DesktopEntry>& find(const std::string& name);
    void forget();

 private:
    const std::string root_;
    const ApplicationSources sources_;
    std::map<std::string, std::optional<DesktopEntry>> known_;
};

}  // namespace tarnwick::platform
