#include "platform/linux/applications/application_unit.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>

namespace tarnwick::platform {

namespace {

std::optional<unsigned> hexDigit(char character) {
    if (character >= '0' && character <= '9') {
        return static_cast<unsigned>(character - '0');
    }
    if (character >= 'a' && character <= 'f') {
        return static_cast<unsigned>(character - 'a') + 10;
    }
    return std::nullopt;
}

// Resolves "\x2d", which stands for a dash inside a part of a unit's name.
std::string unescaped(std::string_view name) {
    std::string text;
    while (!name.empty()) {
        if (name.size() >= 4 && name.starts_with("\\x")) {
            const std::optional<unsigned> high = hexDigit(name[2]);
            const std::optional<unsigned> low = hexDigit(name[3]);
            if (high && low) {
                text += static_cast<char>(*high * 16 + *low);
                name.remove_prefix(4);
                continue;
            }
        }
        text += name.front();
        name.remove_prefix(1);
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

bool isUUID(std::string_view text) {
    constexpr std::string_view pattern = "hhhhhhhh-hhhh-hhhh-hhhh-hhhhhhhhhhhh";
    return std::ranges::equal(text, pattern, [](char character, char kind) {
        return kind == '-' ? character == '-' : hexDigit(character).has_value();
    });
}

// The path of the group that the service manager made.
std::string_view groupPath(std::string_view cgroups) {
    while (!cgroups.empty()) {
        std::string_view line = cgroups.substr(0, cgroups.find('\n'));
        cgroups.remove_prefix(std::min(line.size() + 1, cgroups.size()));
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

// The innermost unit on the path. Deeper groups belong to the unit itself.
std::optional<Unit> innermostUnit(std::string_view path) {
    while (!path.empty()) {
        std::string_view piece = path.substr(path.rfind('/') + 1);
        path.remove_suffix(std::min(piece.size() + 1, path.size()));
        for (const bool isScope : {true, false}) {
            const std::string_view suffix = isScope ? ".scope" : ".service";
            if (piece.ends_with(suffix)) {
                piece.remove_suffix(suffix.size());
                return Unit{.name = piece, .isScope = isScope};
            }
        }
    }
    return std::nullopt;
}

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

// The name has the form "package.application", followed by a unique part in a scope.
std::vector<std::string> entriesOfSnap(const Unit& unit) {
    constexpr std::size_t sizeOfUUID = 36;
    std::string_view tag = unit.name;
    if (tag.size() > sizeOfUUID && isUUID(tag.substr(tag.size() - sizeOfUUID))) {
        tag.remove_suffix(sizeOfUUID + 1);
    }
    const std::size_t dot = tag.find('.');
    if (dot == std::string_view::npos) {
        return {};
    }
    const std::string package(tag.substr(0, dot));
    const std::string_view application = tag.substr(dot + 1);
    return {package + "_" + std::string(application.substr(0, application.find('.'))),
            package + "_" + package};
}

// ":1.2-org.example.Name"
std::vector<std::string> entriesOfBusName(std::string_view name) {
    const std::size_t dash = name.find('-');
    if (dash == std::string_view::npos) {
        return {};
    }
    return {unescaped(name.substr(dash + 1))};
}

std::vector<std::string> entriesOf(Unit unit) {
    if (take(unit.name, "app-")) {
        return entriesOfApplication(withoutInstance(unit));
    }
    if (take(unit.name, "flatpak-")) {
        return entriesOfApplication(withoutInstance(unit));
    }
    if (take(unit.name, "snap.")) {
        return entriesOfSnap(unit);
    }
    if (take(unit.name, "dbus-:")) {
        return entriesOfBusName(withoutInstance(unit));
    }
    return {};
}

}  // namespace

std::vector<std::string> desktopEntryCandidates(std::string_view cgroups) {
    const std::optional<Unit> unit = innermostUnit(groupPath(cgroups));
    if (!unit) {
        return {};
    }
    std::vector<std::string> entries = entriesOf(*unit);
    // Nothing may lead out of the folders of the entries.
    std::erase_if(entries, [](const std::string& entry) {
        return entry.empty() || entry.find('/') != std::string::npos ||
               entry.find('\0') != std::string::npos;
    });
    entries.erase(std::unique(entries.begin(), entries.end()), entries.end());
    return entries;
}

}  // namespace tarnwick::platform
