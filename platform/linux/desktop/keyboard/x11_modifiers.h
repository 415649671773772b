// SPDX-License-Identifier: MIT
// The bits of an X11 key event for the modifiers of a shortcut.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>
#include <xcb/xcb.h>

namespace tarnwick::platform {

/// The bits of the modifiers that depend on the keyboard's mapping; 0 if no key gives the modifier.
/// Shift, Control and Caps Lock have fixed bits.
struct X11Modifiers {
    /// Super.
    std::uint16_t command = 0;
    /// Alt.
    std::uint16_t option = 0;
    std::uint16_t numLock = 0;
    std::uint16_t scrollLock = 0;

    bool operator==(const X11Modifiers&) const = default;

    /// The bits of a sum of hot_key_modifier bits. Absent when one of them has no key.
    std::optional<std::uint16_t> bits(std::uint32_t hotKeyModifiers) const;
    /// The bits of all locks.
    std::uint16_t locks() const;
};

/// The keysyms of the keys of each modifier, in the order of the bits: Shift, Lock, Control and
/// Mod1 to Mod5.
using ModifierKeysyms = std::array<std::vector<xcb_keysym_t>, 8>;

X11Modifiers modifiersOf(const ModifierKeysyms& keysyms);

/// Asks the server, in two round trips. Absent when it does not answer.
std::optional<X11Modifiers> readModifiers(xcb_connection_t* connection);

}  // namespace tarnwick::platform
