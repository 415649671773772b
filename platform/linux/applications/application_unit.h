// SPDX-License-Identifier: MIT
// Finds the application that a process belongs to, by its systemd unit and its program.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::platform {

/// A unit that the session made for an application: "app-gnome-org.gnome.Maps-4711.scope",
/// "app-org.kde.kate@1f2e.service", "snap.firefox.firefox-<uuid>.scope",
/// "dbus-:1.2-org.gnome.Nautilus@0.service".
struct ApplicationUnit {
    /// Path of its control group, below the folder where the groups are.
    std::string group;
    /// The desktop entries that it may stand for, without ".desktop", the likeliest first; at least
    /// one. No name holds a slash.
    std::vector<std::string> entries;
};

/// The unit in which a process runs, from the text of its /proc/PID/cgroup. Absent if that is no
/// application's, or not one of a user's session.
std::optional<ApplicationUnit> applicationUnit(std::string_view cgroups);

/// Whether the program is a shell or a part of a sandbox, which starts an application and is none.
bool isStarter(std::string_view program);

/// Whether another process with this program is a part of the application whose main program is
/// `first`: the same file, or one in the application's own folder. Of an interpreter, which many
/// share, only the first process is the application. Both are paths of executables.
bool belongsTo(std::string_view program, std::string_view first);

}  // namespace tarnwick::platform
