// SPDX-License-Identifier: MIT
// The keys of a keyboard by their place: virtual key codes, as shortcuts are stored, and the key
// codes of X11, which Wayland shares.
#pragma once

#include <cstdint>
#include <optional>

namespace tarnwick::platform {

/// X11 key code (8 to 255) of the key at the place of a virtual key code on an ANSI, ISO or JIS
/// keyboard, whatever is printed on it. Absent for a code that no such key has.
std::optional<std::uint8_t> x11KeyCode(std::uint32_t virtualKeyCode);

/// The other way round: virtual key code (0 to 127) of an X11 key code, which is also what Qt
/// calls the native scan code of a key event on X11 and Wayland. Absent for keys that have no
/// virtual key code, such as Print.
std::optional<std::uint8_t> virtualKeyCode(std::uint32_t x11KeyCode);

}  // namespace tarnwick::platform
