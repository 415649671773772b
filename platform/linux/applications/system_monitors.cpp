// SPDX-License-Identifier: MIT
#include "platform/linux/applications/system_monitors.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>
#include <utility>

#include "platform/linux/applications/desktop_entry.h"
#include "platform/linux/applications/executable_file.h"
#include "platform/linux/applications/installed_applications.h"
#include "platform/linux/files/list_items.h"

namespace tarnwick::platform {
namespace {

struct KnownMonitor {
    /// Name of its desktop entry, without ".desktop".
    std::string_view entry;
    /// The desktops that it belongs to, with colons between them.
    std::string_view desktops{};
};

constexpr std::string_view kGnome =
    "GNOME:GNOME-Classic:GNOME-Flashback:Unity:Budgie:X-Cinnamon:Cinnamon:Pantheon";

/// For each desktop the better monitor comes first. Monitors for any desktop follow, from the most
/// common to the rarest.
constexpr std::array kMonitors = {KnownMonitor{"io.elementary.monitor", "Pantheon"},
                                  KnownMonitor{"com.github.stsdc.monitor", "Pantheon"},
                                  KnownMonitor{"org.gnome.SystemMonitor", kGnome},
                                  KnownMonitor{"gnome-system-monitor", kGnome},
                                  KnownMonitor{"org.kde.plasma-systemmonitor", "KDE"},
                                  KnownMonitor{"org.kde.ksysguard", "KDE"},
                                  KnownMonitor{"xfce4-taskmanager", "XFCE"},
                                  KnownMonitor{"mate-system-monitor", "MATE"},
                                  KnownMonitor{"qps", "LXQt"},
                                  KnownMonitor{"lxtask", "LXDE"},
                                  KnownMonitor{"deepin-system-monitor", "Deepin:DDE"},
                                  KnownMonitor{"ukui-system-monitor", "UKUI"},
                                  KnownMonitor{"io.missioncenter.MissionCenter"},
                                  KnownMonitor{"net.nokyan.Resources"},
                                  KnownMonitor{"org.gnome.Usage"},
                                  KnownMonitor{"stacer"},
                                  KnownMonitor{"btop"},
                                  KnownMonitor{"htop"},
                                  KnownMonitor{"bpytop"}};

/// Commands that run another command in a new terminal window. The order: the terminal chosen by
/// the user or the system, those of the desktops, any other.
constexpr std::array<std::string_view, 13> kTerminals = {
    "xdg-terminal-exec", "x-terminal-emulator -e",
    "gnome-terminal --", "kgx --",
    "ptyxis --",         "konsole -e",
    "xfce4-terminal -x", "mate-terminal -x",
    "qterminal -e",      "foot",
    "alacritty -e",      "kitty",
    "xterm -e"};

/// The entries of all monitors. Those of the session's desktops come first, in the session's order,
/// which names the more special desktop first. Some entries occur twice.
std::vector<std::string_view> entriesFor(std::string_view current) {
    std::vector<std::string_view> entries;
    for (const std::string_view desktop : listItems(current)) {
        for (const KnownMonitor& monitor : kMonitors) {
            if (std::ranges::count(listItems(monitor.desktops), desktop) > 0) {
                entries.push_back(monitor.entry);
            }
        }
    }
    std::ranges::transform(kMonitors, std::back_inserter(entries), &KnownMonitor::entry);
    return entries;
}

}  // namespace

std::optional<InstalledProgram> findSystemMonitor(
    const std::function<const char*(const char*)>& environment, const std::filesystem::path& root) {
    const auto value = [&environment](const char* name) {
        const char* const text = environment(name);
        return std::string(text != nullptr ? text : "");
    };
    const auto isThere = [&root, path = value("PATH")](std::string_view program) {
        return !findExecutable(program, path, root).empty();
    };
    const std::vector<std::string> folders = applicationSources(environment).dataFolders;
    const std::string current = value("XDG_CURRENT_DESKTOP");
    // On any desktop a monitor with windows takes precedence over one in a terminal.
    std::optional<InstalledProgram> inTerminal;
    for (const std::string_view entry : entriesFor(current)) {
        const std::string text =
            desktopEntryFile(root.native(), folders, std::string(entry)).value_or("");
        const auto key = [&text](std::string_view name) {
            return desktopEntryValue(text, name).value_or(std::string_view());
        };
        InstalledProgram found{.entry = std::string(entry),
                               .command = desktopEntryCommand(key("Exec")),
                               .folder = desktopEntryText(key("Path"))};
        if (!parseDesktopEntry(text, {}) || found.command.empty() ||
            !isThere(found.command.front())) {
            continue;
        }
        if (key("Terminal") != "true") {
            return found;
        }
        for (const std::string_view terminal : kTerminals) {
            const std::vector<std::string> words = desktopEntryCommand(terminal);
            if (!inTerminal && isThere(words.front())) {
                found.command.insert(found.command.begin(), words.begin(), words.end());
                inTerminal = std::move(found);
            }
        }
    }
    return inTerminal;
}

}  // namespace tarnwick::platform
