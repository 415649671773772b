// Finds the application that a process belongs to, by the name of its systemd unit.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::platform {

/// The desktop entries that a process may belong to, without ".desktop", the likeliest first, from
/// the text of its /proc/PID/cgroup. Sessions put each application that they start into a unit of
/// its own: "app-gnome-org.gnome.Maps-4711.scope", "app-org.kde.kate@1f2e.service",
/// "snap.firefox.firefox-<uuid>.scope", "dbus-:1.2-org.gnome.Nautilus@0.service". Empty for any
/// other process. No name holds a slash.
std::vector<std::string> desktopEntryCandidates(std::string_view cgroups);

}  // namespace tarnwick::platform
