#include "platform/linux/applications/system_monitors.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "platform/linux/applications/desktop_command.h"
#include "platform/linux/applications/desktop_entry.h"
#include "platform/linux/applications/executable_file.h"
#include "platform/linux/applications/installed_applications.h"
#include "platform/linux/applications/terminal_command.h"
#include "platform/linux/files/kept_file.h"

namespace tarnwick::platform {
namespace {

struct KnownMonitor {
    /// Name of its desktop entry, without ".desktop".
    std::string_view entry;
    /// The desktops that it belongs to, with colons between them.
    std::string_view desktops;
};

constexpr std::string_view kGnome =
    "GNOME:GNOME-Classic:GNOME-Flashback:Unity:Budgie:X-Cinnamon:Cinnamon:Pantheon";
constexpr std::string_view kPlasma = "KDE";

/// Of one desktop the better one first, and the ones that any desktop may have from the most
/// common to the rarest. Those for the terminal come last.
constexpr std::array kMonitors = {KnownMonitor{"io.elementary.monitor", "Pantheon"},
                                  KnownMonitor{"com.github.stsdc.monitor", "Pantheon"},
                                  KnownMonitor{"org.gnome.SystemMonitor", kGnome},
                                  KnownMonitor{"gnome-system-monitor", kGnome},
                                  KnownMonitor{"org.kde.plasma-systemmonitor", kPlasma},
                                  KnownMonitor{"org.kde.ksysguard", kPlasma},
                                  KnownMonitor{"xfce4-taskmanager", "XFCE"},
                                  KnownMonitor{"mate-system-monitor", "MATE"},
                                  KnownMonitor{"qps", "LXQt"},
                                  KnownMonitor{"lxtask", "LXDE"},
                                  KnownMonitor{"deepin-system-monitor", "Deepin:DDE"},
                                  KnownMonitor{"ukui-system-monitor", "UKUI"},
                                  KnownMonitor{"io.missioncenter.MissionCenter", ""},
                                  KnownMonitor{"net.nokyan.Resources", ""},
                                  KnownMonitor{"org.gnome.Usage", ""},
                                  KnownMonitor{"stacer", ""},
                                  KnownMonitor{"btop", ""},
                                  KnownMonitor{"htop", ""},
                                  KnownMonitor{"bpytop", ""}};

/// Hands the items of a list to `visit`, the empty ones too, until it returns true.
template <class Visit>
bool anyItem(std::string_view list, Visit visit) {
    while (!list.empty()) {
        const std::string_view item = list.substr(0, list.find(':'));
        if (visit(item)) {
            return true;
        }
        list.remove_prefix(std::min(item.size() + 1, list.size()));
    }
    return false;
}

/// How well a monitor fits the session: the place of its desktop among those that the session
/// names, the more special one first; their number when it belongs to none of them.
std::size_t rankOf(const KnownMonitor& monitor, std::string_view current) {
    std::size_t rank = 0;
    anyItem(current, [&](std::string_view desktop) {
        const bool belongs =
            anyItem(monitor.desktops, [desktop](std::string_view each) { return each == desktop; });
        rank += belongs ? 0 : 1;
        return belongs;
    });
    return rank;
}

class Finder {
 public:
    Finder(const std::function<const char*(const char*)>& environment,
           const std::filesystem::path& root)
        : environment_(environment),
          root_(root),
          sources_(applicationSources(environment)),
          path_(value("PATH")) {}

    std::optional<InstalledProgram> find() const {
        const std::string current = value("XDG_CURRENT_DESKTOP");
        std::array monitors = kMonitors;
        std::ranges::stable_sort(monitors, {}, [&current](const KnownMonitor& monitor) {
            return rankOf(monitor, current);
        });
        // A window before a terminal, whatever the desktop.
        std::optional<InstalledProgram> inTerminal;
        for (const KnownMonitor& monitor : monitors) {
            if (auto found = read(std::string(monitor.entry))) {
                if (!found->needsTerminal) {
                    return std::move(found->program);
                }
                found->program.command = terminalCommand(found->program.command, path_, root_);
                if (!inTerminal && !found->program.command.empty()) {
                    inTerminal = std::move(found->program);
                }
            }
        }
        return inTerminal;
    }

 private:
    struct Found {
        InstalledProgram program;
        bool needsTerminal = false;
    };

    std::string value(const char* name) const {
        const char* const text = environment_(name);
        return text != nullptr ? text : "";
    }

    bool isThere(std::string_view program) const {
        return !findExecutable(program, path_, root_).empty();
    }

    std::optional<Found> read(const std::string& entry) const {
        for (const std::string& folder : sources_.dataFolders) {
            const std::string file = folder + "/applications/" + entry + ".desktop";
            // The first file of the name decides, even if it says that there is no such program.
            if (const auto text = readWholeFile(belowRoot(root_.native(), file))) {
                return parse(entry, file, *text);
            }
        }
        return std::nullopt;
    }

    std::optional<Found> parse(const std::string& entry, const std::string& file,
                               std::string_view text) const {
        const auto description = parseDesktopEntry(text, sources_.localeSuffixes);
        if (!description) {
            return std::nullopt;
        }
        const auto key = [text](std::string_view name) {
            return desktopEntryValue(text, name).value_or(std::string_view());
        };
        const std::string tryExec = desktopEntryText(key("TryExec"));
        std::vector<std::string> command = desktopCommand(
            key("Exec"),
            {.name = description->name, .icon = desktopEntryText(key("Icon")), .file = file});
        if (command.empty() || !isThere(command.front()) ||
            (!tryExec.empty() && !isThere(tryExec))) {
            return std::nullopt;
        }
        return Found{.program = {.entry = entry,
                                 .command = std::move(command),
                                 .folder = desktopEntryText(key("Path"))},
                     .needsTerminal = key("Terminal") == "true"};
    }

    const std::function<const char*(const char*)>& environment_;
    const std::filesystem::path& root_;
    const ApplicationSources sources_;
    const std::string path_;
};

}  // namespace

std::optional<InstalledProgram> findSystemMonitor(
    const std::function<const char*(const char*)>& environment, const std::filesystem::path& root) {
    return Finder(environment, root).find();
}

}  // namespace tarnwick::platform
