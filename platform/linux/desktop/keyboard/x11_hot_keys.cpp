// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/x11_hot_keys.h"

#include <string>
#include <utility>
#include <xcb/xinput.h>
#include <xkbcommon/xkbcommon-x11.h>

#include "platform/linux/desktop/keyboard/key_codes.h"
#include "platform/linux/desktop/keyboard/x11_xkb.h"
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

/// Whether another program waits for Super by itself, as Cinnamon and Budgie do to open their
/// menus. While Super is held, the server gives the keys to that program alone, at least until it
/// has seen one that it has no use for. So a key that follows Super at once never comes here.
bool isSuperGrabbed(xcb_connection_t* connection, std::uint16_t locks) {
    constexpr std::uint8_t kLeftSuper = 133;
    return isGrabbedByInputExtension(connection, {kLeftSuper, 0, locks});
}

/// The events that may move a modifier.
constexpr std::uint16_t kKeyboardEvents =
    XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
constexpr std::uint16_t kMapParts = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP |
                                    XCB_XKB_MAP_PART_VIRTUAL_MODS |
                                    XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;

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

X11HotKeys::X11HotKeys(xcb_connection_t* connection, Dispatch& dispatch)
    : connection_(connection), nextLook_(dispatch, [this] { tellIfModifiersMoved(); }) {
    followKeyboard();
}

X11HotKeys::~X11HotKeys() = default;

void X11HotKeys::followKeyboard() {
    if (xkb_x11_setup_xkb_extension(connection_, XKB_X11_MIN_MAJOR_XKB_VERSION,
                                    XKB_X11_MIN_MINOR_XKB_VERSION,
                                    XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr,
                                    &keyboardEvent_, nullptr) != 1) {
        return;
    }
    // Adds to the toolkit's selection on the same connection; removes nothing from it.
    xcb_xkb_select_events(connection_, XCB_XKB_ID_USE_CORE_KBD, kKeyboardEvents, 0, kKeyboardEvents,
                          kMapParts, kMapParts, nullptr);
    xcb_flush(connection_);
}

HotKeys::HandlerResult X11HotKeys::installEventHandler(HotKeyHandler handler) {
    return {hot_key_status::kSuccess, handlers_.add(std::move(handler))};
}

HotKeys::RegistrationResult X11HotKeys::registerEventHotKey(std::uint32_t keyCode,
                                                            std::uint32_t modifiers, HotKeyID id) {
    release();
    const int number = ++registrations_;
    modifiers_ = readModifiers(connection_).value_or(X11Modifiers());
    const auto wanted = combination(keyCode, modifiers);
    if (wanted && modifiers == hot_key_modifier::kCommand &&
        isSuperGrabbed(connection_, wanted->locks)) {
        return {hot_key_status::kExists, nullptr};
    }
    const int error = wanted ? grabKey(connection_, *wanted) : kInvalid;
    if (error != 0) {
        return {error == XCB_ACCESS ? hot_key_status::kExists : error, nullptr};
    }
    held_ = wanted;
    id_ = id;
    return {hot_key_status::kSuccess,
            makeHandle("key grab " + std::to_string(number), [this, number] {
                if (number == registrations_) {
                    release();
                    withdrawRegistration();
                }
            })};
}

void X11HotKeys::withdrawRegistration() {
    if (!held_) {
        modifiers_.reset();
    }
}

void X11HotKeys::setRegistrationChanged(std::function<void()> changed) {
    changed_ = std::move(changed);
}

std::optional<KeyCombination> X11HotKeys::combination(std::uint32_t keyCode,
                                                      std::uint32_t modifiers) const {
    const auto key = x11KeyCode(keyCode);
    const auto bits = modifiers_->bits(modifiers);
    const xcb_setup_t* setup = xcb_get_setup(connection_);
    if (!key || *key < setup->min_keycode || *key > setup->max_keycode || !bits) {
        return std::nullopt;
    }
    return KeyCombination{*key, *bits, modifiers_->locks()};
}

void X11HotKeys::release() {
    if (held_) {
        ungrabKey(connection_, *held_);
        held_.reset();
    }
}

bool X11HotKeys::handle(const xcb_generic_event_t& event) {
    // An event that another program made up has its highest bit set and is none of these.
    switch (event.response_type) {
        case XCB_KEY_PRESS:
            return pressed(reinterpret_cast<const xcb_key_press_event_t&>(event));
        case XCB_KEY_RELEASE: {
            const auto& release = reinterpret_cast<const xcb_key_release_event_t&>(event);
            releasedKey_ = release.detail;
            releasedAt_ = release.time;
            return false;
        }
        default:
            if (isKeyboardChange(event)) {
                nextLook_.schedule();
            }
            return false;
    }
}

bool X11HotKeys::isKeyboardChange(const xcb_generic_event_t& event) const {
    if (event.response_type == XCB_MAPPING_NOTIFY) {
        return reinterpret_cast<const xcb_mapping_notify_event_t&>(event).request !=
               XCB_MAPPING_POINTER;
    }
    // The extension has one code for all its events; the next byte tells them apart.
    return keyboardEvent_ != 0 && event.response_type == keyboardEvent_ &&
           (event.pad0 == XCB_XKB_NEW_KEYBOARD_NOTIFY || event.pad0 == XCB_XKB_MAP_NOTIFY);
}

bool X11HotKeys::pressed(const xcb_key_press_event_t& event) {
    if (!held_ || !held_->matches(event.detail, event.state)) {
        return false;
    }
    // A key that repeats is released and pressed in the same moment.
    if (event.detail != releasedKey_ || event.time != releasedAt_) {
        handlers_.press(id_);
    }
    return true;
}

void X11HotKeys::tellIfModifiersMoved() {
    const auto modifiers = readModifiers(connection_);
    if (modifiers_ && modifiers && modifiers != modifiers_) {
        modifiers_ = modifiers;
        if (const auto changed = changed_) {
            changed();
        }
    }
}

}  // namespace tarnwick::platform
