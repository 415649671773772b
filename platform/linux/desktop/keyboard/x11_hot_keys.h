// SPDX-License-Identifier: MIT
// Hot keys of an X server, by passive grabs of its keyboard.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>
#include <xcb/xcb.h>

#include "platform/dispatch.h"
#include "platform/hot_keys.h"
#include "platform/linux/desktop/keyboard/hot_key_handlers.h"
#include "platform/linux/desktop/keyboard/x11_modifiers.h"
#include "platform/next_turn.h"

namespace tarnwick::platform {

/// A key with modifiers, in any state of the locks.
struct KeyCombination {
    /// X11 key code.
    std::uint8_t keyCode = 0;
    std::uint16_t modifiers = 0;
    /// Bits of the locks, which are ignored.
    std::uint16_t locks = 0;

    bool operator==(const KeyCombination&) const = default;

    /// Every set of bits that counts as this combination: one for each set of locks.
    std::vector<std::uint32_t> variants() const;
    /// Whether a key event with this code and these modifier bits is a press of the combination.
    bool matches(std::uint8_t eventKeyCode, std::uint16_t state) const;
};

/// Grabs the combination on every screen of the server: its presses then come to this connection,
/// whichever window has the focus. Takes a few round trips.
///
/// Returns 0 on success; otherwise nothing is grabbed, and the result is the server's error code or
/// -1 if the server is gone. XCB_ACCESS: another program holds the combination or a part of it,
/// perhaps through the input extension.
int grabKey(xcb_connection_t* connection, const KeyCombination& combination);
/// Releases the combination.
void ungrabKey(xcb_connection_t* connection, const KeyCombination& combination);

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
