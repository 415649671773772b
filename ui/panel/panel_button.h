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
    /// Leads back to the home page.
    goBack,
};

/// In a panel's header a button shows its icon alone, its title then is its tool tip; elsewhere the
/// icon, if any, stands before the title. The title always is its accessible name.
struct PanelButton {
    std::string title;
    /// Symbol name; may be empty.
    std::string icon;
    PanelAction action = PanelAction::refresh;
    /// False while there is nothing to run: the button is there and does nothing.
    bool isEnabled = false;

    bool operator==(const PanelButton&) const = default;
};

}  // namespace tarnwick
