#include "platform/linux/desktop/x11_hot_keys.h"

#include <algorithm>
#include <string>
#include <utility>

#include "platform/linux/desktop/key_codes.h"
#include "platform/linux/desktop/x11_xkb.h"
#include "platform/qt/x11.h"

namespace tarnwick::platform {
namespace {

/// What can move a modifier.
constexpr std::uint16_t kKeyboardEvents =
    XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
constexpr std::uint16_t kMapParts = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP |
                                    XCB_XKB_MAP_PART_VIRTUAL_MODS |
                                    XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;

std::int32_t statusOf(int serverError) {
    return serverError == XCB_ACCESS ? hot_key_status::kExists : serverError;
}

}  // namespace

struct X11HotKeys::Registration {
    int number;
    std::uint32_t keyCode;
    std::uint32_t modifiers;
    HotKeyID id;
    /// Absent while nothing is grabbed.
    std::optional<KeyCombination> held{};
    std::int32_t status = hot_key_status::kSuccess;
    /// The status that the program knows.
    std::int32_t toldStatus = hot_key_status::kSuccess;
};

class X11HotKeys::Handle final : public HotKeyHandle {
 public:
    Handle(X11HotKeys& owner, std::shared_ptr<Registration> registration)
        : owner_(owner), registration_(std::move(registration)) {}
    ~Handle() override { owner_.remove(registration_); }

    std::string description() const override {
        return "key grab " + std::to_string(registration_->number);
    }

 private:
    X11HotKeys& owner_;
    std::shared_ptr<Registration> registration_;
};

X11HotKeys::X11HotKeys(xcb_connection_t* connection, Dispatch& dispatch)
    : connection_(connection), dispatch_(dispatch) {
    followKeyboard();
    modifiers_ = readModifiers(connection_).value_or(X11Modifiers());
}

X11HotKeys::~X11HotKeys() = default;

void X11HotKeys::followKeyboard() {
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection_, &xcb_xkb_id);
    if (!extension || !extension->present) {
        return;
    }
    const x11::Reply<xcb_xkb_use_extension_reply_t> use(xcb_xkb_use_extension_reply(
        connection_,
        xcb_xkb_use_extension(connection_, XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION), nullptr));
    if (!use || !use->supported) {
        return;
    }
    keyboardEvent_ = extension->first_event;
    // Adds to what the toolkit has selected on the same connection, and takes nothing away.
    xcb_xkb_select_events(connection_, XCB_XKB_ID_USE_CORE_KBD, kKeyboardEvents, 0, kKeyboardEvents,
                          kMapParts, kMapParts, nullptr);
}

HotKeys::HandlerResult X11HotKeys::installEventHandler(HotKeyHandler handler) {
    return {hot_key_status::kSuccess, handlers_.add(std::move(handler))};
}

HotKeys::RegistrationResult X11HotKeys::registerEventHotKey(std::uint32_t keyCode,
                                                            std::uint32_t modifiers, HotKeyID id) {
    // The keyboard may have changed with its event still on the way.
    update();
    refused_.reset();
    const auto registration =
        std::make_shared<Registration>(Registration{++count_, keyCode, modifiers, id});
    grab(*registration);
    registration->toldStatus = registration->status;
    if (!registration->held) {
        refused_ = registration;
        return {registration->status, nullptr};
    }
    registrations_.push_back(registration);
    return {registration->status, std::make_unique<Handle>(*this, registration)};
}

void X11HotKeys::withdrawRegistration() {
    refused_.reset();
}

void X11HotKeys::setRegistrationChanged(std::function<void()> changed) {
    changed_ = std::move(changed);
}

std::optional<KeyCombination> X11HotKeys::combination(const Registration& registration) const {
    const auto key = x11KeyCode(registration.keyCode);
    const auto bits = modifiers_.bits(registration.modifiers);
    const xcb_setup_t* setup = xcb_get_setup(connection_);
    if (!key || *key < setup->min_keycode || *key > setup->max_keycode || !bits) {
        return std::nullopt;
    }
    return KeyCombination{*key, *bits, modifiers_.locks()};
}

bool X11HotKeys::isHeldHere(const KeyCombination& combination) const {
    return std::any_of(
        registrations_.begin(), registrations_.end(),
        [&](const std::shared_ptr<Registration>& each) { return each->held == combination; });
}

void X11HotKeys::grab(Registration& registration) {
    const auto wanted = combination(registration);
    if (!wanted) {
        registration.status = kInvalid;
    } else if (isHeldHere(*wanted)) {
        // The server would let one connection grab it twice.
        registration.status = hot_key_status::kExists;
    } else {
        registration.status = statusOf(grabKey(connection_, *wanted));
        if (registration.status == hot_key_status::kSuccess) {
            registration.held = wanted;
        }
    }
}

void X11HotKeys::release(Registration& registration) {
    if (registration.held) {
        ungrabKey(connection_, *registration.held);
        registration.held.reset();
    }
}

void X11HotKeys::remove(const std::shared_ptr<Registration>& registration) {
    release(*registration);
    std::erase(registrations_, registration);
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
                keyboardChanged();
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
    const auto found =
        std::find_if(registrations_.begin(), registrations_.end(), [&](const auto& registration) {
            return registration->held && registration->held->matches(event.detail, event.state);
        });
    if (found == registrations_.end()) {
        return false;
    }
    // A key that repeats is released and pressed in the same moment.
    if (event.detail != releasedKey_ || event.time != releasedAt_) {
        handlers_.press((*found)->id);
    }
    return true;
}

void X11HotKeys::keyboardChanged() {
    // A new layout comes as a burst of events.
    if (std::exchange(isStale_, true)) {
        return;
    }
    dispatch_.async([weak = std::weak_ptr(self_)] {
        if (const auto self = weak.lock()) {
            (*self)->isStale_ = false;
            (*self)->update();
        }
    });
}

void X11HotKeys::update() {
    const auto modifiers = readModifiers(connection_);
    if (!modifiers || *modifiers == modifiers_) {
        return;
    }
    modifiers_ = *modifiers;
    for (const auto& registration : registrations_) {
        if (registration->held != combination(*registration)) {
            release(*registration);
        }
    }
    for (const auto& registration : registrations_) {
        if (!registration->held) {
            grab(*registration);
        }
    }
    if (refused_) {
        // Only to see whether it still would be.
        grab(*refused_);
        release(*refused_);
    }
    if (hasNews()) {
        dispatch_.async([weak = std::weak_ptr(self_)] {
            if (const auto self = weak.lock()) {
                (*self)->tellNews();
            }
        });
    }
}

bool X11HotKeys::hasNews() const {
    const auto isNews = [](const std::shared_ptr<Registration>& registration) {
        return registration->status != registration->toldStatus;
    };
    return (refused_ && isNews(refused_)) ||
           std::any_of(registrations_.begin(), registrations_.end(), isNews);
}

void X11HotKeys::tellNews() {
    // It may have become what it was, or have been registered anew.
    if (!hasNews()) {
        return;
    }
    for (const auto& registration : registrations_) {
        registration->toldStatus = registration->status;
    }
    if (refused_) {
        refused_->toldStatus = refused_->status;
    }
    if (const auto changed = changed_) {
        changed();
    }
}

}  // namespace tarnwick::platform
