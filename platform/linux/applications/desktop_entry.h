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
    /// It is offered in menus.
    bool isShown = true;
};

/// The raw value of a key of the entry's main group, without spaces around it; the last one where
/// it is given several times. Absent when the key or the group is not there.
std::optional<std::string_view> desktopEntryValue(std::string_view text, std::string_view key);

/// The text that a value stands for, its escapes resolved.
std::string desktopEntryText(std::string_view value);

/// The program and its arguments for the value of an entry's key Exec when there is nothing to
/// open: its fields (%f and the like) are empty. Empty when a quotation does not end.
std::vector<std::string> desktopEntryCommand(std::string_view exec);

/// Suffixes of localised keys for the user's language, the likeliest first: for "de_AT@euro" that
/// is "de_AT@euro", "de_AT", "de@euro", "de". `environment` gives a variable's value or null.
std::vector<std::string> localeSuffixes(const std::function<const char*(const char*)>& environment);

/// The application that the text of a desktop entry describes, with the name for the first of the
/// suffixes that it has one for, else its general name. Absent when it describes none, says that it
/// was removed, or is damaged.
std::optional<DesktopEntry> parseDesktopEntry(std::string_view text,
                                              std::span<const std::string> suffixes);

}  // namespace tarnwick::platform
