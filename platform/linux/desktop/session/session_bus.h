// SPDX-License-Identifier: MIT
// The way to the session bus.
#pragma once

#include <QDBusConnection>

namespace tarnwick::platform {

/// If the session has no bus, prevents the libraries of this process from starting one: no other
/// program would use that bus, so it would bring no tray, and it would remain after the program.
/// Programs started from here see no bus either. Requires: called before the application object is
/// made. Further calls do no harm.
void keepBusFromBeingStarted();

/// The process's connection to the session bus; not connected when the session has none. Main
/// thread.
QDBusConnection sessionBus();

}  // namespace tarnwick::platform
