// SPDX-License-Identifier: MIT
#include "platform/qt/x11.h"

#include <QGuiApplication>

namespace tarnwick::x11 {

xcb_connection_t* connection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    // Without a display there may be an interface without a connection.
    return x11 == nullptr ? nullptr : x11->connection();
}

std::vector<xcb_window_t> roots(xcb_connection_t* connection) {
    std::vector<xcb_window_t> found;
    for (auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection)); screens.rem > 0;
         xcb_screen_next(&screens)) {
        found.push_back(screens.data->root);
    }
    return found;
}

xcb_atom_t atom(xcb_connection_t* connection, const std::string& name) {
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection,
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()),
        nullptr));
    return reply == nullptr ? static_cast<xcb_atom_t>(XCB_NONE) : reply->atom;
}

xcb_window_t selectionOwner(xcb_connection_t* connection, const std::string& selection) {
    const Reply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, atom(connection, selection)), nullptr));
    return reply == nullptr ? static_cast<xcb_window_t>(XCB_NONE) : reply->owner;
}

void activate(xcb_window_t window) {
    xcb_connection_t* server = connection();
    if (server == nullptr) {
        return;
    }
    // Window managers ignore a program's own request while the user works with another one. A
    // choice in a tray's menu arrives over the bus, so there is no press to refer to. Requests from
    // the user's tools are obeyed, so this one is marked as such.
    constexpr std::uint32_t kByTheUser = 2;
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom(server, "_NET_ACTIVE_WINDOW");
    event.data.data32[0] = kByTheUser;
    event.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(server, 0, roots(server).front(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(server);
}

bool isPointerFree(xcb_window_t window) {
    xcb_connection_t* server = connection();
    if (server == nullptr) {
        return false;
    }
    const Reply<xcb_grab_pointer_reply_t> reply(xcb_grab_pointer_reply(
        server,
        xcb_grab_pointer(
            server, 1, window, XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE,
            XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
        nullptr));
    if (reply == nullptr || reply->status != XCB_GRAB_STATUS_SUCCESS) {
        return false;
    }
    xcb_ungrab_pointer(server, XCB_CURRENT_TIME);
    xcb_flush(server);
    return true;
}

}  // namespace tarnwick::x11
