// SPDX-License-Identifier: MIT
// The name by which a Linux desktop knows the program.
#pragma once

namespace tarnwick::platform {

/// Name of the desktop entry (without its ending), the icon, the windows' class, the service on the
/// session bus and the autostart entry. Portals give a shortcut only to a name with dots whose
/// desktop entry is installed.
inline constexpr auto kIdentifier = "org.tarnwick.Tarnwick";

}  // namespace tarnwick::platform
