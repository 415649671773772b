// The connection to an X server that the toolkit has.
#pragma once

#include <cstdlib>
#include <memory>
#include <string>
#include <xcb/xcb.h>

namespace tarnwick::qt::x11 {

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};
/// A reply of the server, freed with the pointer.
template <typename T>
using Reply = std::unique_ptr<T, Free>;

/// Null where the desktop is no X server's.
xcb_connection_t* connection();

/// The number of a name; XCB_NONE when the server does not answer.
xcb_atom_t atom(xcb_connection_t* connection, const std::string& name);

/// Asks the window manager to bring a window before all others and to give it the keyboard,
/// whatever the user has done last. Does nothing where there is no X server.
void activate(xcb_window_t window);

/// Takes the pointer for a window; false while another program holds it. The server gives it back
/// when the window is hidden.
bool grabPointer(xcb_window_t window);

}  // namespace tarnwick::qt::x11
