// Opens the desktop's own system monitor.
#pragma once

#include <QProcessEnvironment>
#include <cstddef>
#include <optional>

namespace tarnwick::platform {

/// Conditions that programs started from here inherit: those with which this program was started.
struct StartConditions {
    QProcessEnvironment environment;
    /// Limit of open files; present if this program has raised its own limit.
    std::optional<std::size_t> descriptorLimit{};
};

/// Starts the system monitor that findSystemMonitor() finds. It is not a child of this process and
/// runs in its own session and, if the user has a service manager, in its own unit: it does not end
/// with this program and is not counted as part of it. False if there is none, or if it cannot be
/// started, which the user is told by notice(). Main thread.
bool openActivityMonitor(const StartConditions& conditions);

}  // namespace tarnwick::platform
