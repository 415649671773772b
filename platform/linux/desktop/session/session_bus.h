// The way to the session bus.
#pragma once

#include <QDBusConnection>

namespace tarnwick::platform {

/// Where the session has no bus, keeps the libraries of this process from starting one by
/// themselves: nobody else would talk to it, so it would bring no tray, and it would be left
/// behind. Programs started from here see no bus either. To be called before the application
/// object is made; more often does no harm.
void keepBusFromBeingStarted();

/// The process's connection to the session bus; not connected when the session has none. Main
/// thread.
QDBusConnection sessionBus();

}  // namespace tarnwick::platform
