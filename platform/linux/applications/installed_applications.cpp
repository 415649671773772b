#include "platform/linux/applications/installed_applications.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/files/list_items.h"

namespace tarnwick::platform {

namespace {

// Bounds the memory. The lists hold far fewer applications than this.
constexpr std::size_t kMostKnown = 256;

void addFolder(std::string_view folder, std::vector<std::string>& folders) {
    while (folder.size() > 1 && folder.ends_with('/')) {
        folder.remove_suffix(1);
    }
    // Only absolute paths count.
    if (folder.starts_with('/') && std::ranges::find(folders, folder) == folders.end()) {
        folders.emplace_back(folder);
    }
}

}  // namespace

ApplicationSources applicationSources(const std::function<const char*(const char*)>& environment) {
    const auto value = [&environment](const char* name) {
        const char* const text = environment(name);
        return std::string(text != nullptr ? text : "");
    };
    ApplicationSources sources;
    std::vector<std::string>& folders = sources.dataFolders;
    const std::string home = value("HOME");
    const std::string own = value("XDG_DATA_HOME");
    if (own.starts_with('/')) {
        addFolder(own, folders);
    } else {
        addFolder(home + "/.local/share", folders);
    }
    const std::string list = value("XDG_DATA_DIRS");
    for (const std::string_view folder :
         listItems(list.empty() ? std::string_view("/usr/local/share:/usr/share") : list)) {
        addFolder(folder, folders);
    }
    addFolder(home + "/.local/share/flatpak/exports/share", folders);
    addFolder("/var/lib/flatpak/exports/share", folders);
    addFolder("/var/lib/snapd/desktop", folders);
    sources.localeSuffixes = localeSuffixes(environment);
    return sources;
}

InstalledApplications::InstalledApplications(std::string root, ApplicationSources sources)
    : root_(std::move(root)), sources_(std::move(sources)) {}

const std::optional<DesktopEntry>& InstalledApplications::find(const std::string& name) {
    const auto known = known_.find(name);
    if (known != known_.end()) {
        return known->second;
    }
    if (known_.size() >= kMostKnown) {
        known_.clear();
    }
    return known_.emplace(name, read(name)).first->second;
}

void InstalledApplications::forget() {
    known_.clear();
}

std::optional<DesktopEntry> InstalledApplications::read(const std::string& name) const {
    for (const std::string& folder : sources_.dataFolders) {
        // The first file with this name decides, even if it marks the application as removed.
        if (const std::optional<std::string> text =
                readWholeFile(belowRoot(root_, folder + "/applications/" + name + ".desktop"))) {
            return parseDesktopEntry(*text, sources_.localeSuffixes);
        }
    }
    return std::nullopt;
}

}  // namespace tarnwick::platform
