// SPDX-License-Identifier: MIT
// The files that describe applications to desktops.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::platform {

struct DesktopEntry {
    /// Valid UTF-8, never empty.
    std::string name;
    /// Whether menus offer it.
    bool isShown = true;
};

/// The raw value of a key of the entry's main group, without spaces around it; the last one where
/// it is given several times. Absent when the key or the group is not there.
std::optional<std::string_view> desktopEntryValue(std::string_view text, std::string_view key);

/// The text of a value after its escapes are resolved.
std::string desktopEntryText(std::string_view value);

/// The program and its arguments from the value of the key Exec, for a start without a file to
/// open: its fields (%f and the like) are empty. Returns an empty list if a quotation does not end.
std::vector<std::string> desktopEntryCommand(std::string_view exec);

/// Suffixes of localised keys for the user's language, the likeliest first: for "de_AT@euro" that
/// is "de_AT@euro", "de_AT", "de@euro", "de". `environment` gives a variable's value or null.
std::vector<std::string> localeSuffixes(const std::function<const char*(const char*)>& environment);

/// The application in the text of a desktop entry. Its name is the one for the first of the
/// suffixes that has a name, else the general name. Absent if the entry describes no application,
/// is marked as removed, or is damaged.
std::optional<DesktopEntry> parseDesktopEntry(std::string_view text,
                                              std::span<const std::string> suffixes);

}  // namespace tarnwick::platform
