// Holding a key combination of a whole X server.
#pragma once

#include <cstdint>
#include <vector>
#include <xcb/xcb.h>

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

}  // namespace tarnwick::platform
