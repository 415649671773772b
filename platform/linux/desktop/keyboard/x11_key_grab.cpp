#include "platform/linux/desktop/keyboard/x11_key_grab.h"

#include <xcb/xinput.h>

#include "platform/qt/x11.h"

namespace tarnwick::platform {
namespace {

constexpr std::uint16_t kModifiers = 0xFF;

/// Whether another program holds the combination, or a part of it, on any screen through the input
/// extension, as desktops do.
///
/// The server keeps such grabs apart from those of the core protocol: it allows both beside each
/// other and gives the press to the extension's. Only an attempt to grab shows them: the answer
/// lists what other programs hold.
bool isGrabbedByInputExtension(xcb_connection_t* connection, const KeyCombination& combination) {
    const xcb_query_extension_reply_t* extension =
        xcb_get_extension_data(connection, &xcb_input_id);
    if (!extension || !extension->present) {
        return false;
    }
    // Includes the devices that stand for several others: a grab on any of them blocks the
    // combination.
    constexpr xcb_input_device_id_t kEveryKeyboard = XCB_INPUT_DEVICE_ALL;
    const std::vector<std::uint32_t> variants = combination.variants();
    const auto count = static_cast<std::uint16_t>(variants.size());
    bool isGrabbed = false;
    for (const xcb_window_t root : x11::roots(connection)) {
        // This grab selects no events.
        const auto cookie = xcb_input_xi_passive_grab_device(
            connection, XCB_CURRENT_TIME, root, XCB_CURSOR_NONE, combination.keyCode,
            kEveryKeyboard, count, 0, XCB_INPUT_GRAB_TYPE_KEYCODE, XCB_INPUT_GRAB_MODE_22_ASYNC,
            XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER, nullptr, variants.data());
        const x11::Reply<xcb_input_xi_passive_grab_device_reply_t> reply(
            xcb_input_xi_passive_grab_device_reply(connection, cookie, nullptr));
        isGrabbed = isGrabbed || (reply && reply->num_modifiers > 0);
        xcb_input_xi_passive_ungrab_device(connection, root, combination.keyCode, kEveryKeyboard,
                                           count, XCB_INPUT_GRAB_TYPE_KEYCODE, variants.data());
    }
    xcb_flush(connection);
    return isGrabbed;
}

}  // namespace

std::vector<std::uint32_t> KeyCombination::variants() const {
    const std::uint32_t free = locks & ~modifiers;
    std::vector<std::uint32_t> found;
    // Counts through the subsets of the free bits, from all of them down to none.
    for (std::uint32_t set = free;; set = (set - 1) & free) {
        found.push_back(modifiers | set);
        if (set == 0) {
            return found;
        }
    }
}

bool KeyCombination::matches(std::uint8_t eventKeyCode, std::uint16_t state) const {
    return eventKeyCode == keyCode && (state & kModifiers & ~(locks & ~modifiers)) == modifiers;
}

int grabKey(xcb_connection_t* connection, const KeyCombination& combination) {
    std::vector<xcb_void_cookie_t> cookies;
    for (const xcb_window_t root : x11::roots(connection)) {
        for (const std::uint32_t variant : combination.variants()) {
            cookies.push_back(xcb_grab_key_checked(
                connection, 0, root, static_cast<std::uint16_t>(variant), combination.keyCode,
                XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        }
    }
    int result = 0;
    for (const xcb_void_cookie_t cookie : cookies) {
        const x11::Reply<xcb_generic_error_t> error(xcb_request_check(connection, cookie));
        if (error && result != XCB_ACCESS) {
            result = error->error_code;
        }
    }
    if (result == 0 && isGrabbedByInputExtension(connection, combination)) {
        result = XCB_ACCESS;
    }
    if (xcb_connection_has_error(connection) != 0) {
        return -1;
    }
    if (result != 0) {
        ungrabKey(connection, combination);
    }
    return result;
}

void ungrabKey(xcb_connection_t* connection, const KeyCombination& combination) {
    for (const xcb_window_t root : x11::roots(connection)) {
        for (const std::uint32_t variant : combination.variants()) {
            xcb_ungrab_key(connection, combination.keyCode, root,
                           static_cast<std::uint16_t>(variant));
        }
    }
    xcb_flush(connection);
}

}  // namespace tarnwick::platform
