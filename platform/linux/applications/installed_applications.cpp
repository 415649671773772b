// SPDX-License-Identifier: MIT
#include "platform/linux/applications/installed_applications.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "platform/linux/applications/desktop_entry.h"
#include "platform/linux/files/kept_file.h"
#include "platform/linux/files/list_items.h"

namespace tarnwick::platform {

namespace {

// Bytes. The longest entries, with their names in all languages, have some tens of thousands.
constexpr std::size_t kLongestEntry = std::size_t{1} << 20;

void addFolder(std::string_view folder, std::vector<std::string>& folders) {
    while (folder.size() > 1 && folder.ends_with('/')) {
        folder.remove_suffix(1);
    }
    // Only absolute paths count.
    if (folder.starts_with('/') && std::ranges::find(folders, folder) == folders.end()) {
        folders.emplace_back(folder);
    }
}

// Text of the entry in a folder with a slash at its end. An entry of a folder in it has the name of
// that folder and a dash in front of its own: "kde-foo" is kde/foo.desktop.
std::optional<std::string> textBelow(const std::string& folder, const std::string& name) {
    std::optional<std::string> text = readWholeFile(folder + name + ".desktop", kLongestEntry);
    for (std::size_t dash = name.find('-'); !text && dash != std::string::npos;
         dash = name.find('-', dash + 1)) {
        const std::string inner = folder + name.substr(0, dash) + '/';
        std::error_code error;
        // Nothing may lead out of the folder.
        if (dash > 0 && !name.starts_with('.') && std::filesystem::is_directory(inner, error)) {
            text = textBelow(inner, name.substr(dash + 1));
        }
    }
    return text;
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

std::optional<std::string> desktopEntryFile(const std::string& root,
                                            const std::vector<std::string>& dataFolders,
                                            const std::string& name) {
    for (const std::string& folder : dataFolders) {
        if (auto text = textBelow(belowRoot(root, folder + "/applications/"), name)) {
            return text;
        }
    }
    return std::nullopt;
}

}  // namespace tarnwick::platform
