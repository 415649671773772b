// The font that the desktop's own windows are set in.
#pragma once

namespace tarnwick::platform {

/// Gives the application the desktop's interface font. The toolkit by itself learns it only from
/// plug-ins that cost more memory than the whole program. Asks the settings daemon of the X11
/// display; where there is none, the toolkit's own font stays, at the size that desktops have in
/// common. Main thread, once the application exists.
void applyInterfaceFont();

}  // namespace tarnwick::platform
