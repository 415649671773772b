#include "ui/qt/compositor.h"

#include <cstdlib>
#include <string>

#include "ui/qt/x11.h"

namespace tarnwick::qt {

bool hasCompositor() {
    xcb_connection_t* connection = x11::connection();
    if (connection == nullptr) {
        return true;
    }
    // The number in "host:display.number"; without one the server's first screen is meant.
    int screen = 0;
    int display = 0;
    char* host = nullptr;
    if (xcb_parse_display(nullptr, &host, &display, &screen) != 0) {
        std::free(host);
    }
    const xcb_atom_t selection = x11::atom(connection, "_NET_WM_CM_S" + std::to_string(screen));
    if (selection == XCB_NONE) {
        return false;
    }
    const x11::Reply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, selection), nullptr));
    return owner != nullptr && owner->owner != XCB_NONE;
}

}  // namespace tarnwick::qt
