// Key combinations that other programs hold by the X server's input extension.
#pragma once

#include <xcb/xcb.h>

#include "platform/linux/desktop/keyboard/x11_key_grab.h"

namespace tarnwick::platform {

/// Whether another program holds the combination, or a part of it, on any screen by the input
/// extension. The server keeps such grabs apart from those of the core protocol: it refuses
/// neither beside the other, and gives the press to the extension's. False without the extension.
/// A few round trips.
bool isGrabbedByInputExtension(xcb_connection_t* connection, const KeyCombination& combination);

}  // namespace tarnwick::platform
