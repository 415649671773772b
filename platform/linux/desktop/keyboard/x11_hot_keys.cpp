#include "platform/linux/desktop/keyboard/x11_hot_keys.h"

#include <string>
#include <utility>
#include <xkbcommon/xkbcommon-x11.h>

#include "platform/linux/desktop/keyboard/key_codes.h"
#include "platform/linux/desktop/keyboard/x11_xkb.h"

namespace tarnwick::platform {
namespace {

/// The events that may move a modifier.
constexpr std::uint16_t kKeyboardEvents =
    XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
constexpr std::uint16_t kMapParts = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP |
                                    XCB_XKB_MAP_PART_VIRTUAL_MODS |
                                    XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;

}  // namespace

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
