// SPDX-License-Identifier: MIT
// Telling the desktop's portal which program is calling.
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <functional>

namespace tarnwick::platform {

/// Name of the program's desktop entry, without its ending.
inline constexpr auto kDesktopEntryName = "tarnwick";

/// Tells the portal the program's name. The portal stores what its user grants under this name;
/// newer portals give no shortcuts to programs without a name.
///
/// Requires: no earlier call to a portal on this connection, because the first call fixes the name.
/// `then` is called from the event loop after any answer, even an error: older portals have no such
/// call, others accept only installed entries, and every portal accepts only one name. `then` is
/// not called after `owner` is destroyed.
void introduceToPortal(const QDBusConnection& bus, QObject* owner, std::function<void()> then);

}  // namespace tarnwick::platform
