// The font that the desktop's own windows are set in.
#pragma once

namespace tarnwick::platform {

/// Sets the desktop's interface font for the application. Reads it from the settings daemon of the
/// X11 display; without a daemon, the toolkit's own font stays, in the common size of desktops. The
/// toolkit could read it only through plug-ins that need more memory than the whole program. Main
/// thread. Requires: the application object exists.
void applyInterfaceFont();

}  // namespace tarnwick::platform
