#include "platform/linux/desktop/x11_key_grab.h"

#include "platform/linux/desktop/x11_input_grabs.h"
#include "platform/qt/x11.h"

namespace tarnwick::platform {
namespace {

constexpr std::uint16_t kModifiers = 0xFF;

template <class Call>
void onEveryRoot(xcb_connection_t* connection, Call call) {
    for (auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection)); screens.rem > 0;
         xcb_screen_next(&screens)) {
        call(screens.data->root);
    }
}

}  // namespace

std::vector<std::uint16_t> KeyCombination::variants() const {
    const auto free = static_cast<std::uint16_t>(locks & ~modifiers);
    std::vector<std::uint16_t> found;
    // Counts through the subsets of the free bits, from all of them down to none.
    for (std::uint16_t set = free;; set = static_cast<std::uint16_t>((set - 1) & free)) {
        found.push_back(static_cast<std::uint16_t>(modifiers | set));
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
    onEveryRoot(connection, [&](xcb_window_t root) {
        for (const std::uint16_t variant : combination.variants()) {
            cookies.push_back(xcb_grab_key_checked(connection, 0, root, variant,
                                                   combination.keyCode, XCB_GRAB_MODE_ASYNC,
                                                   XCB_GRAB_MODE_ASYNC));
        }
    });
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
    onEveryRoot(connection, [&](xcb_window_t root) {
        for (const std::uint16_t variant : combination.variants()) {
            xcb_ungrab_key(connection, combination.keyCode, root, variant);
        }
    });
    xcb_flush(connection);
}

}  // namespace tarnwick::platform
