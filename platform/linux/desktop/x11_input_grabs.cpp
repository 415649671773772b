#include "platform/linux/desktop/x11_input_grabs.h"

#include <cstdint>
#include <vector>
#include <xcb/xinput.h>

#include "platform/qt/x11.h"

namespace tarnwick::platform {
namespace {

// What the toolkit asks for, too: the server takes no older version later than a newer one.
constexpr std::uint16_t kMajorVersion = 2;
constexpr std::uint16_t kMinorVersion = 2;

/// Every keyboard, also those that stand for several: a grab of any of them is in the way.
constexpr xcb_input_device_id_t kDevice = XCB_INPUT_DEVICE_ALL;

bool hasExtension(xcb_connection_t* connection) {
    const xcb_query_extension_reply_t* extension =
        xcb_get_extension_data(connection, &xcb_input_id);
    if (!extension || !extension->present) {
        return false;
    }
    const x11::Reply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        connection, xcb_input_xi_query_version(connection, kMajorVersion, kMinorVersion), nullptr));
    return version && version->major_version >= kMajorVersion;
}

}  // namespace

bool isGrabbedByInputExtension(xcb_connection_t* connection, const KeyCombination& combination) {
    if (!hasExtension(connection)) {
        return false;
    }
    std::vector<std::uint32_t> variants;
    for (const std::uint16_t each : combination.variants()) {
        variants.push_back(each);
    }
    const auto count = static_cast<std::uint16_t>(variants.size());
    bool isGrabbed = false;
    for (auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection)); screens.rem > 0;
         xcb_screen_next(&screens)) {
        const xcb_window_t root = screens.data->root;
        // Only taking it tells: the answer lists what somebody else has. It selects no events.
        const x11::Reply<xcb_input_xi_passive_grab_device_reply_t> reply(
            xcb_input_xi_passive_grab_device_reply(
                connection,
                xcb_input_xi_passive_grab_device(
                    connection, XCB_CURRENT_TIME, root, XCB_CURSOR_NONE, combination.keyCode,
                    kDevice, count, 0, XCB_INPUT_GRAB_TYPE_KEYCODE, XCB_INPUT_GRAB_MODE_22_ASYNC,
                    XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER, nullptr,
                    variants.data()),
                nullptr));
        isGrabbed = isGrabbed || (reply && reply->num_modifiers > 0);
        xcb_input_xi_passive_ungrab_device(connection, root, combination.keyCode, kDevice, count,
                                           XCB_INPUT_GRAB_TYPE_KEYCODE, variants.data());
    }
    xcb_flush(connection);
    return isGrabbed;
}

}  // namespace tarnwick::platform
