// The connection to an X server that the toolkit has, and what is asked of the server.
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

/// Null where the desktop is no X server's.
xcb_connection_t* connection();

/// The root window of every screen, of which there is at least one.
std::vector<xcb_window_t> roots(xcb_connection_t* connection);

/// The number of a name; XCB_NONE when the server does not answer.
xcb_atom_t atom(xcb_connection_t* connection, const std::string& name);

/// The window that owns a selection; XCB_NONE when none does.
xcb_window_t selectionOwner(xcb_connection_t* connection, const std::string& selection);

/// Asks the window manager to bring a window before all others and to give it the keyboard,
/// whatever the user has done last. Does nothing where there is no X server.
void activate(xcb_window_t window);

/// Takes the pointer for a window; false while another program holds it. The server gives it back
/// when the window is hidden.
bool grabPointer(xcb_window_t window);

}  // namespace tarnwick::x11
