#include "ui/qt/compositor.h"

#include <QGuiApplication>
#include <cstdlib>
#include <memory>
#include <string>
#include <xcb/xcb.h>

namespace tarnwick::qt {

namespace {

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};

bool selectionHasOwner(xcb_connection_t* connection, const std::string& name) {
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> atom(xcb_intern_atom_reply(
        connection,
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()),
        nullptr));
    if (atom == nullptr) {
        return false;
    }
    const std::unique_ptr<xcb_get_selection_owner_reply_t, Free> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom),
                                      nullptr));
    return owner != nullptr && owner->owner != XCB_NONE;
}

}  // namespace

bool hasCompositor() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    // Without a display the interface may be there and have no connection.
    xcb_connection_t* connection = x11 == nullptr ? nullptr : x11->connection();
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
    return selectionHasOwner(connection, "_NET_WM_CM_S" + std::to_string(screen));
}

}  // namespace tarnwick::qt
