// Telling the desktop's portal which program is calling.
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <functional>

namespace tarnwick::platform {

/// Name of the program's desktop entry, without its ending.
inline constexpr auto kDesktopEntryName = "tarnwick";

/// Tells the portal the name of the program, by which it keeps what its user grants; newer ones
/// give no shortcuts to programs that they cannot name. It has to come before every other call to
/// a portal, since the first call of a connection settles its name. `then` is called from the event
/// loop once the portal has answered, whatever it said: older portals know of no names, others know
/// only entries that are installed, and each hears a name just once. Not after the end of `owner`.
void introduceToPortal(const QDBusConnection& bus, QObject* owner, std::function<void()> then);

}  // namespace tarnwick::platform
