// The unit that holds an application's processes.
#pragma once

#include <QDBusConnection>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace tarnwick::platform {

/// Name of the unit for the application of a desktop entry, without ".desktop", as
/// desktopEntryCandidates() reads it.
std::string applicationScopeName(std::string_view entry, pid_t process);

/// Asks the session's service manager to put a process that this program has started into a unit
/// of its own, so that it is neither counted as this program's nor ended with it. Nothing happens
/// where there is no such manager.
void moveToApplicationScope(const QDBusConnection& bus, std::string_view entry, pid_t process);

}  // namespace tarnwick::platform
