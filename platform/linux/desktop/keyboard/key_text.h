// SPDX-License-Identifier: MIT
// What a key is called: the characters that it produces in a keyboard layout.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <xkbcommon/xkbcommon.h>

namespace tarnwick::platform {

struct XkbDeleter {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
    void operator()(xkb_state* state) const { xkb_state_unref(state); }
};
using XkbContext = std::unique_ptr<xkb_context, XkbDeleter>;
using XkbKeymap = std::unique_ptr<xkb_keymap, XkbDeleter>;
using XkbState = std::unique_ptr<xkb_state, XkbDeleter>;

/// A context for keymaps that a display server describes: it reads neither files nor variables.
XkbContext makeServerContext();

/// A keyboard with layouts as the machine has them: "us,ru" or "us(intl)". Reads files; null when
/// the machine has no such layout.
XkbKeymap installedKeymap(const char* layouts);

/// The characters of a key without modifiers, UTF-8, in upper case. Keys of the keypad give their
/// digits and signs, whatever Num Lock says; a dead key gives its accent. Absent for a key that
/// the keyboard does not have or that produces nothing that can be seen. `layout` counts the
/// layouts of the keymap from 0.
std::optional<std::string> keyText(xkb_keymap& keymap, xkb_layout_index_t layout,
                                   std::uint16_t virtualKeyCode);

/// The keysym that a key produces without modifiers; keys of the keypad give that with Num Lock.
///
/// A letter of a script other than Latin is replaced: the result then comes from the first layout
/// of the keymap that has a Latin letter or a common sign on the key, if there is one. Desktops
/// find the key by that in every layout. XKB_KEY_NoSymbol if the keyboard does not have the key, or
/// the key produces nothing or several keysyms at once.
xkb_keysym_t keyKeysym(xkb_keymap& keymap, xkb_layout_index_t layout, std::uint32_t virtualKeyCode);

}  // namespace tarnwick::platform
