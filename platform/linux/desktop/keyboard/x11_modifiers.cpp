// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/x11_modifiers.h"

#include <algorithm>
#include <initializer_list>
#include <xkbcommon/xkbcommon-keysyms.h>

#include "platform/hot_keys.h"
#include "platform/qt/x11.h"

namespace tarnwick::platform {
namespace {

/// Position of the first modifier without a fixed meaning. Shift, Lock and Control come before it.
constexpr std::size_t kFirstFree = 3;

/// The first modifier that one of these keys gives.
std::uint16_t bitOf(const ModifierKeysyms& keysyms, std::initializer_list<xcb_keysym_t> keys) {
    for (std::size_t i = kFirstFree; i < keysyms.size(); ++i) {
        if (std::find_first_of(keysyms[i].begin(), keysyms[i].end(), keys.begin(), keys.end()) !=
            keysyms[i].end()) {
            return static_cast<std::uint16_t>(1U << i);
        }
    }
    return 0;
}

}  // namespace

std::optional<std::uint16_t> X11Modifiers::bits(std::uint32_t hotKeyModifiers) const {
    struct Meaning {
        std::uint32_t flag;
        std::uint16_t bit;
    };
    const std::array<Meaning, 4> meanings = {{
        {hot_key_modifier::kCommand, command},
        {hot_key_modifier::kShift, XCB_MOD_MASK_SHIFT},
        {hot_key_modifier::kOption, option},
        {hot_key_modifier::kControl, XCB_MOD_MASK_CONTROL},
    }};
    std::uint16_t sum = 0;
    for (const auto& [flag, bit] : meanings) {
        if ((hotKeyModifiers & flag) == 0) {
            continue;
        }
        if (bit == 0) {
            return std::nullopt;
        }
        sum = static_cast<std::uint16_t>(sum | bit);
    }
    return sum;
}

std::uint16_t X11Modifiers::locks() const {
    return static_cast<std::uint16_t>(XCB_MOD_MASK_LOCK | numLock | scrollLock);
}

X11Modifiers modifiersOf(const ModifierKeysyms& keysyms) {
    return {
        .command = bitOf(keysyms, {XKB_KEY_Super_L, XKB_KEY_Super_R}),
        .option = bitOf(keysyms, {XKB_KEY_Alt_L, XKB_KEY_Alt_R}),
        .numLock = bitOf(keysyms, {XKB_KEY_Num_Lock}),
        .scrollLock = bitOf(keysyms, {XKB_KEY_Scroll_Lock}),
    };
}

std::optional<X11Modifiers> readModifiers(xcb_connection_t* connection) {
    const xcb_setup_t* setup = xcb_get_setup(connection);
    const std::uint8_t first = setup->min_keycode;
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - first + 1);
    const auto modifierCookie = xcb_get_modifier_mapping(connection);
    const auto keyboardCookie = xcb_get_keyboard_mapping(connection, first, count);
    const x11::Reply<xcb_get_modifier_mapping_reply_t> modifiers(
        xcb_get_modifier_mapping_reply(connection, modifierCookie, nullptr));
    const x11::Reply<xcb_get_keyboard_mapping_reply_t> keyboard(
        xcb_get_keyboard_mapping_reply(connection, keyboardCookie, nullptr));
    if (!modifiers || !keyboard) {
        return std::nullopt;
    }

    const xcb_keycode_t* keys = xcb_get_modifier_mapping_keycodes(modifiers.get());
    const xcb_keysym_t* all = xcb_get_keyboard_mapping_keysyms(keyboard.get());
    const std::size_t perModifier = modifiers->keycodes_per_modifier;
    const std::size_t perKey = keyboard->keysyms_per_keycode;
    const auto length =
        static_cast<std::size_t>(xcb_get_keyboard_mapping_keysyms_length(keyboard.get()));
    ModifierKeysyms keysyms;
    for (std::size_t i = 0; i < keysyms.size() * perModifier; ++i) {
        if (keys[i] < first) {
            continue;  // No key: the rows are filled up with 0.
        }
        const std::size_t begin = (keys[i] - first) * perKey;
        const std::size_t end = std::min(begin + perKey, length);
        for (std::size_t at = begin; at < end; ++at) {
            keysyms[i / perModifier].push_back(all[at]);
        }
    }
    return modifiersOf(keysyms);
}

}  // namespace tarnwick::platform
