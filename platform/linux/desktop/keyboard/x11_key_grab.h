// Holding a key combination of a whole X server.
#pragma once

#include <cstdint>
#include <vector>
#include <xcb/xcb.h>

namespace tarnwick::platform {

/// A key with modifiers, whatever the locks say.
struct KeyCombination {
    /// X11 key code.
    std::uint8_t keyCode = 0;
    std::uint16_t modifiers = 0;
    /// The bits that do not matter.
    std::uint16_t locks = 0;

    bool operator==(const KeyCombination&) const = default;

    /// Every set of bits that counts as this combination: one for each set of locks.
    std::vector<std::uint32_t> variants() const;
    /// A key event with this code and these modifier bits is a press of the combination.
    bool matches(std::uint8_t eventKeyCode, std::uint16_t state) const;
};

/// Grabs the combination on every screen of the server, so that its presses come to this
/// connection whichever window has the focus. 0 on success; else the error code of the server
/// (XCB_ACCESS: another program holds it, or a part of it, be it by the input extension) or -1
/// when the server is gone, and nothing is grabbed. A few round trips.
int grabKey(xcb_connection_t* connection, const KeyCombination& combination);
/// Gives it back.
void ungrabKey(xcb_connection_t* connection, const KeyCombination& combination);

}  // namespace tarnwick::platform
