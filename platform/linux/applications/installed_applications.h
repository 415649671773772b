// The applications that are installed, by the names of their desktop entries.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/applications/desktop_entry.h"

namespace tarnwick::platform {

/// Where and how a user's applications are described.
struct ApplicationSources {
    /// Folders with an "applications" folder in them; an earlier one counts before a later one.
    std::vector<std::string> dataFolders;
    /// As localeSuffixes() gives them.
    std::vector<std::string> localeSuffixes;
};

/// The user's own data folder, those of the system, and those of Flatpak and Snap, which a session
/// may leave out. `environment` gives a variable's value or null.
ApplicationSources applicationSources(const std::function<const char*(const char*)>& environment);

/// Looks each entry up once and remembers it, also that there is none, until forget(). One thread
/// at a time.
class InstalledApplications {
 public:
    /// All folders are below `root`.
    InstalledApplications(std::string root, ApplicationSources sources);

    /// The entry of this name, without ".desktop". Absent when there is none or it is damaged.
    const std::optional<DesktopEntry>& find(const std::string& name);
    void forget();

 private:
    std::optional<DesktopEntry> read(const std::string& name) const;

    const std::string root_;
    const ApplicationSources sources_;
    std::map<std::string, std::optional<DesktopEntry>> known_;
};

}  // namespace tarnwick::platform
