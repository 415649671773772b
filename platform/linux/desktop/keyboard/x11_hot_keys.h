// Hot keys of an X server, by passive grabs of its keyboard.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <xcb/xcb.h>

#include "platform/dispatch.h"
#include "platform/hot_keys.h"
#include "platform/linux/desktop/keyboard/hot_key_handlers.h"
#include "platform/linux/desktop/keyboard/x11_key_grab.h"
#include "platform/linux/desktop/keyboard/x11_modifiers.h"
#include "platform/next_turn.h"

namespace tarnwick::platform {

/// One hot key at a time: a new registration releases the previous one. Main thread.
///
/// Command is Super, Option is Alt. Keys are identified by their place, so a layout cannot move
/// them. It can move the modifiers; then the function of setRegistrationChanged() is called. The
/// class reads no events itself: the reader of the connection passes them to handle().
///
/// The times of the events tell a first press from a repetition, as the server sends them by
/// default. Requires: the connection does not ask for detectable auto-repeat; Qt does not.
class X11HotKeys : public HotKeys {
 public:
    /// The keyboard lacks the key, or a key for one of the modifiers (`eventHotKeyInvalidErr`).
    static constexpr std::int32_t kInvalid = -9879;

    /// Requires: `connection` and `dispatch` outlive this object.
    X11HotKeys(xcb_connection_t* connection, Dispatch& dispatch);
    ~X11HotKeys() override;
    X11HotKeys(const X11HotKeys&) = delete;
    X11HotKeys& operator=(const X11HotKeys&) = delete;

    HandlerResult installEventHandler(HotKeyHandler handler) override;
    /// Beside the statuses of HotKeys and kInvalid, the status may be an error code of the server,
    /// or -1 if the server is gone.
    RegistrationResult registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                           HotKeyID id) override;
    void withdrawRegistration() override;
    void setRegistrationChanged(std::function<void()> changed) override;

    /// Handles an event of the connection. True if it was a press of a hot key; then no other code
    /// should handle it.
    bool handle(const xcb_generic_event_t& event);

 private:
    void followKeyboard();
    bool isKeyboardChange(const xcb_generic_event_t& event) const;
    bool pressed(const xcb_key_press_event_t& event);
    /// Compares the modifiers with those of the last registration and reports a difference.
    void tellIfModifiersMoved();
    /// The combination to grab on the current keyboard; absent if the keyboard lacks a key for it.
    std::optional<KeyCombination> combination(std::uint32_t keyCode, std::uint32_t modifiers) const;
    void release();

    xcb_connection_t* connection_;
    /// Looks on the next turn, because a new layout comes as a burst of events.
    NextTurn nextLook_;
    HotKeyHandlers handlers_;
    std::function<void()> changed_;
    /// As the last registration found them; absent when there is none.
    std::optional<X11Modifiers> modifiers_;
    /// First event code of the keyboard extension; 0 without the extension.
    std::uint8_t keyboardEvent_ = 0;
    /// The grabbed combination; absent if nothing is grabbed.
    std::optional<KeyCombination> held_;
    HotKeyID id_;
    /// Number of registrations so far: the handle of an older one releases nothing.
    int registrations_ = 0;
    // The last release of any key.
    xcb_keycode_t releasedKey_ = 0;
    xcb_timestamp_t releasedAt_ = 0;
};

}  // namespace tarnwick::platform
