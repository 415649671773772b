// What can be pressed in the panel.
#pragma once

#include <string>

namespace tarnwick {

enum class PanelAction {
    /// Measures everything anew.
    refresh,
    showSettings,
    /// Opens the system's own list of processes.
    openActivityMonitor,
    /// Ends the program.
    quit,
    showMemoryDetail,
    showPerformanceDetail,
};

/// A button with its title inside, or, where it has an icon, the icon alone, whose title is then
/// its tool tip and its accessible name.
struct PanelButton {
    std::string title;
    /// Symbol name; empty for a button that shows its title.
    std::string icon;
    PanelAction action = PanelAction::refresh;
    /// False while there is nothing to run: the button is there and does nothing.
    bool isEnabled = false;

    bool operator==(const PanelButton&) const = default;
};

}  // namespace tarnwick
