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

/// One hot key at a time: registering one gives the one before back. Command is Super, Option is
/// Alt. Keys are taken by their place, so a layout cannot move them; it can move the modifiers, and
/// then registering again is suggested. Reads no events itself: whoever does passes them to
/// handle(). Main thread.
///
/// Whether a press is the first one or a repetition is told by the times of the events, as the
/// server sends them by itself: the connection must not ask for detectable auto-repeat, which
/// Qt does not.
class X11HotKeys : public HotKeys {
 public:
    /// The keyboard lacks the key, or a key for one of the modifiers (`eventHotKeyInvalidErr`).
    static constexpr std::int32_t kInvalid = -9879;

    /// Both outlive the hot keys.
    X11HotKeys(xcb_connection_t* connection, Dispatch& dispatch);
    ~X11HotKeys() override;
    X11HotKeys(const X11HotKeys&) = delete;
    X11HotKeys& operator=(const X11HotKeys&) = delete;

    HandlerResult installEventHandler(HotKeyHandler handler) override;
    /// Any other refusal of the server is its own error code.
    RegistrationResult registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                           HotKeyID id) override;
    void withdrawRegistration() override;
    void setRegistrationChanged(std::function<void()> changed) override;

    /// Takes an event of the connection. True when it was a press of a hot key and is used up.
    bool handle(const xcb_generic_event_t& event);

 private:
    void followKeyboard();
    bool isKeyboardChange(const xcb_generic_event_t& event) const;
    bool pressed(const xcb_key_press_event_t& event);
    /// Looks at the keyboard in a turn of its own: a new layout comes as a burst of events.
    void tellIfModifiersMoved();
    /// What to grab on the keyboard of now; absent where that lacks a key for it.
    std::optional<KeyCombination> combination(std::uint32_t keyCode, std::uint32_t modifiers) const;
    void release();

    xcb_connection_t* connection_;
    /// A new layout comes as a burst of events.
    NextTurn nextLook_;
    HotKeyHandlers handlers_;
    std::function<void()> changed_;
    /// As the last registration found them; absent when there is none.
    std::optional<X11Modifiers> modifiers_;
    /// First event code of the keyboard extension; 0 without the extension.
    std::uint8_t keyboardEvent_ = 0;
    /// Absent while nothing is grabbed.
    std::optional<KeyCombination> held_;
    HotKeyID id_;
    /// Counts registrations: the handle of an older one gives nothing back.
    int registrations_ = 0;
    // The last release of any key.
    xcb_keycode_t releasedKey_ = 0;
    xcb_timestamp_t releasedAt_ = 0;
};

}  // namespace tarnwick::platform
