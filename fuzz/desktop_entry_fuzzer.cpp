// SPDX-License-Identifier: MIT
// Any text as an application's description and as a locale: a name is valid UTF-8 and never empty.
// Any text as the groups of a process: no candidate leads out of a folder.
// Any text as the list of the folders of applications: each is absolute and stands there once.
// Any text as the path of an application's first program: a compiler is no part of it.
#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/fuzzer.h"
#include "platform/linux/applications/application_unit.h"
#include "platform/linux/applications/desktop_entry.h"
#include "platform/linux/applications/installed_applications.h"
#include "platform/utf8.h"

using tarnwick::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::array<std::string, 2> german{"de_AT", "de"};
    if (const auto entry = tarnwick::platform::parseDesktopEntry(text, german)) {
        require(!entry->name.empty());
        require(tarnwick::platform::repairedUTF8(entry->name) == entry->name);
    }

    const std::string value(text.substr(0, text.find('\0')));
    for (const std::string& suffix :
         tarnwick::platform::localeSuffixes([&value](const char*) { return value.c_str(); })) {
        require(!suffix.empty() && suffix != "C" && suffix != "POSIX");
    }

    const auto folders = tarnwick::platform::applicationSources([&value](const char*) {
                             return value.c_str();
                         }).dataFolders;
    for (const std::string& folder : folders) {
        require(folder.starts_with('/') && std::ranges::count(folders, folder) == 1);
        require(folder == "/" || !folder.ends_with('/'));
    }

    if (const auto unit = tarnwick::platform::applicationUnit(text)) {
        require(!unit->entries.empty() && text.find(unit->group) != std::string_view::npos);
        for (const std::string& name : unit->entries) {
            require(!name.empty() && name.find('/') == std::string::npos);
            require(name.find('\0') == std::string::npos);
        }
    }

    const std::string_view first = text.substr(0, text.find('\n'));
    require(!tarnwick::platform::belongsTo("/usr/bin/make", first) || first == "/usr/bin/make");
    return 0;
}
