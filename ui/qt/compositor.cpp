#include "ui/qt/compositor.h"

#include <cstdlib>
#include <string>

#include "platform/qt/x11.h"

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
    return x11::selectionOwner(connection, "_NET_WM_CM_S" + std::to_string(screen)) != XCB_NONE;
}

}  // namespace tarnwick::qt
