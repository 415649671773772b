// SPDX-License-Identifier: MIT
#include "platform/linux/applications/application_unit.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <utility>

#include "platform/linux/files/list_items.h"

namespace tarnwick::platform {

namespace {

// Resolves "\x2d", which stands for a dash inside a part of a unit's name.
std::string unescaped(std::string_view name) {
    std::string text;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const std::string_view escape = name.substr(i, 4);
        const char* const end = escape.data() + escape.size();
        unsigned char value = 0;
        if (escape.size() == 4 && escape.starts_with("\\x") &&
            std::from_chars(escape.data() + 2, end, value, 16).ptr == end) {
            text += static_cast<char>(value);
            i += 3;
        } else {
            text += name[i];
        }
    }
    return text;
}

bool take(std::string_view& text, std::string_view prefix) {
    if (!text.starts_with(prefix)) {
        return false;
    }
    text.remove_prefix(prefix.size());
    return true;
}

// The path of the group that the service manager made.
std::string_view groupPath(std::string_view cgroups) {
    for (std::string_view line : listItems(cgroups, '\n')) {
        line.remove_prefix(std::min(line.find(':'), line.size()));
        if ((take(line, "::") || take(line, ":name=systemd:")) && line.size() > 1) {
            return line;
        }
    }
    return {};
}

// A unit's name without the suffix that tells its kind.
struct Unit {
    std::string_view name;
    bool isScope = false;
};

// The name without the part that makes the unit unique: "-4711" of a scope, "@1f2e" of a service.
std::string_view withoutInstance(const Unit& unit) {
    return unit.name.substr(0, unit.name.rfind(unit.isScope ? '-' : '@'));
}

// The name has the form "[launcher-]entry". A dash within the entry should be escaped, so that the
// last part is the entry; some launchers do not escape it, so longer parts follow as candidates.
std::vector<std::string> entriesOfApplication(std::string_view name) {
    std::vector<std::string> entries;
    for (std::size_t dash = name.rfind('-'); dash != std::string_view::npos && dash > 0;
         dash = name.rfind('-', dash - 1)) {
        entries.push_back(unescaped(name.substr(dash + 1)));
    }
    entries.push_back(unescaped(name));
    return entries;
}

// The name has the form "package.application", followed by an identifier in a scope.
std::vector<std::string> entriesOfSnap(const Unit& unit) {
    constexpr std::size_t sizeOfIdentifier = 37;
    std::string_view tag = unit.name;
    if (unit.isScope) {
        tag.remove_suffix(std::min(sizeOfIdentifier, tag.size()));
    }
    const std::size_t dot = tag.find('.');
    if (dot == std::string_view::npos) {
        return {};
    }
    const std::string package(tag.substr(0, dot));
    return {package + "_" + std::string(tag.substr(dot + 1)), package + "_" + package};
}

std::vector<std::string> entriesOf(Unit unit) {
    if (take(unit.name, "app-") || take(unit.name, "flatpak-")) {
        return entriesOfApplication(withoutInstance(unit));
    }
    if (take(unit.name, "snap.")) {
        return entriesOfSnap(unit);
    }
    // ":1.2-org.example.Name"
    if (take(unit.name, "dbus-:")) {
        const std::string_view name = withoutInstance(unit);
        const std::size_t dash = name.find('-');
        if (dash != std::string_view::npos) {
            return {unescaped(name.substr(dash + 1))};
        }
    }
    return {};
}

std::string_view lastPiece(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

// Whether the program runs programs of many applications: /usr/bin/python3.11.
bool isInterpreter(std::string_view program) {
    constexpr std::array<std::string_view, 5> interpreters = {"java", "node", "perl", "python",
                                                              "ruby"};
    const std::string_view name = lastPiece(program);
    return std::ranges::count(interpreters,
                              name.substr(0, name.find_last_not_of("0123456789.") + 1)) > 0;
}

// The folder that holds nothing but one application, with a slash at its end. Empty where programs
// of several lie.
std::string_view ownFolder(std::string_view program) {
    if (program.starts_with("/app/")) {
        return program.substr(0, 5);
    }
    for (const std::string_view packages : {"/opt/", "/snap/"}) {
        if (program.starts_with(packages)) {
            return program.substr(0, program.find('/', packages.size()) + 1);
        }
    }
    const std::string_view folder = program.substr(0, program.rfind('/') + 1);
    constexpr std::array<std::string_view, 6> shared = {"bin", "sbin",  "games",
                                                        "lib", "lib64", "libexec"};
    // Such as /usr/bin and the user's home.
    constexpr int fewestSlashes = 4;
    const bool isShared =
        std::ranges::count(folder, '/') < fewestSlashes ||
        std::ranges::count(shared, lastPiece(folder.substr(0, folder.size() - 1))) > 0;
    return isShared ? std::string_view() : folder;
}

}  // namespace

std::optional<ApplicationUnit> applicationUnit(std::string_view cgroups) {
    std::string_view path = groupPath(cgroups);
    constexpr std::string_view end = ".service/";
    const std::size_t manager = path.find(end, path.find("/user@"));
    if (manager == std::string_view::npos) {
        return std::nullopt;
    }
    // The innermost unit counts. Deeper groups belong to the unit itself.
    while (path.size() > manager + end.size()) {
        std::string_view name = lastPiece(path);
        const bool isScope = name.ends_with(".scope");
        if (isScope || name.ends_with(".service")) {
            ApplicationUnit unit{.group = std::string(path),
                                 .entries = entriesOf({name.substr(0, name.rfind('.')), isScope})};
            // Nothing may lead out of the folders of the entries.
            std::erase_if(unit.entries, [](const std::string& entry) {
                return entry.empty() || entry.find('/') != std::string::npos ||
                       entry.find('\0') != std::string::npos;
            });
            unit.entries.erase(std::unique(unit.entries.begin(), unit.entries.end()),
                               unit.entries.end());
            return unit.entries.empty() ? std::nullopt : std::optional(std::move(unit));
        }
        path.remove_suffix(std::min(name.size() + 1, path.size()));
    }
    return std::nullopt;
}

bool isStarter(std::string_view program) {
    constexpr std::array<std::string_view, 5> starters = {"sh", "dash", "bash", "bwrap",
                                                          "xdg-dbus-proxy"};
    return std::ranges::count(starters, lastPiece(program)) > 0;
}

bool belongsTo(std::string_view program, std::string_view first) {
    const std::string_view folder = ownFolder(first);
    return folder.empty() ? program == first && !isInterpreter(first) : program.starts_with(folder);
}

}  // namespace tarnwick::platform
