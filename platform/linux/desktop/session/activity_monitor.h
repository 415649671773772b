// Opens the desktop's own system monitor.
#pragma once

#include <QProcessEnvironment>
#include <cstddef>
#include <optional>

namespace tarnwick::platform {

/// What programs that the user starts from here begin with: what this one began with.
struct StartConditions {
    QProcessEnvironment environment;
    /// How many files a program may have open, where this one has raised that for itself.
    std::optional<std::size_t> descriptorLimit{};
};

/// Starts the system monitor that findSystemMonitor() finds: as the child of nobody here, in a
/// session of its own and, where the user has a service manager, in a unit of its own, so that it
/// is neither ended with this program nor counted as it. False, with nothing done, when there is
/// none. Main thread.
bool openActivityMonitor(const StartConditions& conditions);

}  // namespace tarnwick::platform
