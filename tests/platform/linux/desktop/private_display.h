// SPDX-License-Identifier: MIT
// An X server of the test's own, and actions on it as other programs perform them.
#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <vector>
#include <xcb/xcb.h>

#include "platform/qt/x11.h"

namespace tarnwick::platform::testing {

/// A connection to an X server, as each program has one.
class DisplayClient final {
 public:
    /// `name` as in DISPLAY.
    explicit DisplayClient(const QString& name);
    ~DisplayClient();
    DisplayClient(const DisplayClient&) = delete;
    DisplayClient& operator=(const DisplayClient&) = delete;

    xcb_connection_t* connection() const { return connection_; }
    std::vector<xcb_window_t> roots() const { return x11::roots(connection_); }

    /// Grabs a key on one root; false when the server refuses.
    bool grab(std::uint8_t key, std::uint16_t modifiers, xcb_window_t root);
    bool grab(std::uint8_t key, std::uint16_t modifiers) {
        return grab(key, modifiers, roots().front());
    }
    void ungrab(std::uint8_t key, std::uint16_t modifiers, xcb_window_t root);
    void ungrab(std::uint8_t key, std::uint16_t modifiers) {
        ungrab(key, modifiers, roots().front());
    }
    /// The same by the input extension, as desktops do; on one of the server's keyboards.
    bool grabByExtension(std::uint8_t key, std::uint16_t modifiers, xcb_window_t root);
    void ungrabByExtension(std::uint8_t key, std::uint16_t modifiers, xcb_window_t root);
    /// Whether this client could grab the key with these modifiers and any of these locks, on
    /// every root. Nothing stays grabbed.
    bool couldGrab(std::uint8_t key, std::uint16_t modifiers,
                   const std::vector<std::uint16_t>& locks);

    /// Presses and releases keys of the keyboard, by X11 key codes.
    void pressKey(std::uint8_t key);
    void releaseKey(std::uint8_t key);
    /// Presses and releases a key while others are held.
    void stroke(const std::vector<std::uint8_t>& held, std::uint8_t key);
    /// Switches on the locks with these bits, and switches off all others.
    void setLocks(std::uint8_t modifiers);
    /// Switches to a layout of the keymap, from 0.
    void setLayout(std::uint8_t layout);

    /// Moves a key to another modifier (0 for Shift to 7 for Mod5) or, with -1, to none.
    void setModifierOf(std::uint8_t key, int modifier);

    /// Returns when the server has handled every earlier request.
    void sync();

 private:
    xcb_connection_t* connection_;
};

class PrivateDisplay final {
 public:
    explicit PrivateDisplay(int screens = 1, const QStringList& options = {});
    ~PrivateDisplay();

    QString name() const { return name_; }
    /// Installs layouts as the user's settings would: "us,ru".
    void setLayouts(const QString& layouts) const;
    /// Ends the server now.
    void end();

 private:
    QProcess server_;
    QString name_;
};

}  // namespace tarnwick::platform::testing
