// SPDX-License-Identifier: MIT
// What the compositor of the toolkit's connection offers and the toolkit does not use.
#pragma once

#include <string>
#include <vector>

struct wl_display;

namespace tarnwick::wayland {

/// The names of the compositor's global objects, such as "zwlr_layer_shell_v1", which tell what it
/// can do. Empty if the program does not run under a compositor. Takes one round trip to it. Main
/// thread.
std::vector<std::string> globals();

/// Ends the wait for a window that an activation token announced, for a token that no window will
/// use: GNOME shows a busy pointer until one does. Does nothing under other compositors. Takes one
/// round trip. Main thread.
void endStartup(const std::string& token);

/// The same on any connection; null is none.
std::vector<std::string> globals(wl_display* display);
void endStartup(wl_display* display, const std::string& token);

}  // namespace tarnwick::wayland
