// SPDX-License-Identifier: MIT
// The toolkit's connection to an X server, and requests to that server.
#pragma once

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>
#include <xcb/xcb.h>

namespace tarnwick::x11 {

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};
/// A reply, an error or an event of the server, which the library has allocated.
template <class T>
using Reply = std::unique_ptr<T, Free>;

/// The connection; null if the program does not run on an X server.
xcb_connection_t* connection();

/// The root window of every screen, of which there is at least one.
std::vector<xcb_window_t> roots(xcb_connection_t* connection);

/// The number of a name; XCB_NONE when the server does not answer.
xcb_atom_t atom(xcb_connection_t* connection, const std::string& name);

/// The window that owns a selection; XCB_NONE when none does.
xcb_window_t selectionOwner(xcb_connection_t* connection, const std::string& selection);

/// Asks the window manager to bring a window to the front and to give it the keyboard, even if the
/// user is working with another program. Does nothing without an X server.
void activate(xcb_window_t window);

/// Whether the pointer could be grabbed for a visible window. False without an X server, and while
/// any program holds the pointer, this one included.
bool isPointerFree(xcb_window_t window);

}  // namespace tarnwick::x11
