// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/key_codes.h"

#include <algorithm>
#include <array>
#include <linux/input-event-codes.h>

namespace tarnwick::platform {
namespace {

/// X11 key codes are the kernel's key codes plus 8.
constexpr std::uint32_t kFirstX11KeyCode = 8;
constexpr std::uint8_t kNone = KEY_RESERVED;

/// The kernel's key for each virtual key code, eight in a line, by their places on an ANSI
/// keyboard.
///
/// 0x0A is the key beside the left Shift of an ISO keyboard. 0x5D (Yen), 0x5E (underscore), 0x5F
/// (the keypad's comma), 0x66 (Eisu) and 0x68 (Kana) are keys of a JIS keyboard; the last two stand
/// for the second and the first key that switch languages. 0x47 (Clear) and 0x72 (Help) lie where
/// other keyboards have Num Lock and Insert.
constexpr std::array<std::uint8_t, 128> kKeys = {
    // 0x00
    KEY_A, KEY_S, KEY_D, KEY_F, KEY_H, KEY_G, KEY_Z, KEY_X,
    // 0x08
    KEY_C, KEY_V, KEY_102ND, KEY_B, KEY_Q, KEY_W, KEY_E, KEY_R,
    // 0x10
    KEY_Y, KEY_T, KEY_1, KEY_2, KEY_3, KEY_4, KEY_6, KEY_5,
    // 0x18
    KEY_EQUAL, KEY_9, KEY_7, KEY_MINUS, KEY_8, KEY_0, KEY_RIGHTBRACE, KEY_O,
    // 0x20
    KEY_U, KEY_LEFTBRACE, KEY_I, KEY_P, KEY_ENTER, KEY_L, KEY_J, KEY_APOSTROPHE,
    // 0x28
    KEY_K, KEY_SEMICOLON, KEY_BACKSLASH, KEY_COMMA, KEY_SLASH, KEY_N, KEY_M, KEY_DOT,
    // 0x30
    KEY_TAB, KEY_SPACE, KEY_GRAVE, KEY_BACKSPACE, kNone, KEY_ESC, KEY_RIGHTMETA, KEY_LEFTMETA,
    // 0x38
    KEY_LEFTSHIFT, KEY_CAPSLOCK, KEY_LEFTALT, KEY_LEFTCTRL, KEY_RIGHTSHIFT, KEY_RIGHTALT,
    KEY_RIGHTCTRL, kNone,
    // 0x40
    KEY_F17, KEY_KPDOT, kNone, KEY_KPASTERISK, kNone, KEY_KPPLUS, kNone, KEY_NUMLOCK,
    // 0x48
    KEY_VOLUMEUP, KEY_VOLUMEDOWN, KEY_MUTE, KEY_KPSLASH, KEY_KPENTER, kNone, KEY_KPMINUS, KEY_F18,
    // 0x50
    KEY_F19, KEY_KPEQUAL, KEY_KP0, KEY_KP1, KEY_KP2, KEY_KP3, KEY_KP4, KEY_KP5,
    // 0x58
    KEY_KP6, KEY_KP7, KEY_F20, KEY_KP8, KEY_KP9, KEY_YEN, KEY_RO, KEY_KPCOMMA,
    // 0x60
    KEY_F5, KEY_F6, KEY_F7, KEY_F3, KEY_F8, KEY_F9, KEY_HANJA, KEY_F11,
    // 0x68
    KEY_HANGEUL, KEY_F13, KEY_F16, KEY_F14, kNone, KEY_F10, KEY_COMPOSE, KEY_F12,
    // 0x70
    kNone, KEY_F15, KEY_INSERT, KEY_HOME, KEY_PAGEUP, KEY_DELETE, KEY_F4, KEY_END,
    // 0x78
    KEY_F2, KEY_PAGEDOWN, KEY_F1, KEY_LEFT, KEY_RIGHT, KEY_DOWN, KEY_UP, kNone};

}  // namespace

std::optional<std::uint8_t> x11KeyCode(std::uint32_t virtualKeyCode) {
    if (virtualKeyCode >= kKeys.size() || kKeys[virtualKeyCode] == kNone) {
        return std::nullopt;
    }
    return static_cast<std::uint8_t>(kKeys[virtualKeyCode] + kFirstX11KeyCode);
}

std::optional<std::uint8_t> virtualKeyCode(std::uint32_t x11KeyCode) {
    const auto found = std::ranges::find(kKeys, x11KeyCode - kFirstX11KeyCode);
    if (x11KeyCode <= kFirstX11KeyCode || found == kKeys.end()) {
        return std::nullopt;
    }
    return static_cast<std::uint8_t>(found - kKeys.begin());
}

}  // namespace tarnwick::platform
