// The way to the session bus.
#pragma once

#include <QDBusConnection>

namespace tarnwick::platform {

/// The process's connection to the session bus; not connected when the session has none. Unlike
/// the bus library by itself this never starts a bus: one that nobody else talks to has no tray,
/// and it would be left behind. Main thread.
QDBusConnection sessionBus();

}  // namespace tarnwick::platform
