// SPDX-License-Identifier: MIT
// Telling the desktop's portal which program is calling.
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <functional>

namespace tarnwick::platform {

/// Tells the portal the program's identifier. The portal stores what its user grants under it;
/// newer portals give no shortcuts to programs without one.
///
/// Requires: no earlier call to a portal on this connection, because the first call fixes it.
/// `then` is called from the event loop after any answer, even an error: older portals have no such
/// call, others accept only installed entries, and every portal accepts only one. `then` is
/// not called after `owner` is destroyed.
void introduceToPortal(const QDBusConnection& bus, QObject* owner, std::function<void()> then);

}  // namespace tarnwick::platform
