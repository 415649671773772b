// The text of an entry in an autostart folder.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::platform {

/// What decides whether a desktop starts the program of an entry at login.
struct AutostartEntry {
    /// The user has switched it off, or says that it is removed.
    bool isOff = false;
    /// Switched off in a way that only some desktops know; isOffFor() tells where.
    bool isOffForSome = false;
    /// It is started under a condition that the desktop evaluates, or in a way of its own.
    bool isConditional = false;
    /// Names of the only desktops that start it; absent when all do.
    std::optional<std::vector<std::string>> onlyShowIn;
    /// Names of desktops that do not start it.
    std::vector<std::string> notShowIn;
    /// A program without which the entry does not count; empty when there is none.
    std::string tryExec;
    /// The program: a path, or a name that is looked for; empty when none can be made out.
    std::string program;
};

/// Absent when the text describes no application. Any text is fine.
std::optional<AutostartEntry> parseAutostartEntry(std::string_view text);

/// The entry is for the session whose desktops `current` names, the more special one first, with
/// colons between them.
bool isMeantFor(const AutostartEntry& entry, std::string_view current);

/// The entry is switched off in the session whose desktops `current` names. Those that follow the
/// folder alone (a window manager's helper, systemd) know no more than that an entry is removed.
bool isOffFor(const AutostartEntry& entry, std::string_view current);

/// An entry that starts `command`: the program, then its arguments. Absent when no entry can hold
/// the program's path: when there is an equals sign in it, or it is not valid UTF-8.
std::optional<std::string> autostartEntryText(std::span<const std::string> command);

/// An entry that keeps those of its name in other folders from starting anything.
std::string switchedOffEntryText();

}  // namespace tarnwick::platform
