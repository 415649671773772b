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

/// What a key produces without modifiers, those of the keypad with Num Lock. A letter of another
/// script than the Latin one gives way to what the first of the keymap's layouts with a Latin one
/// has there: by that desktops find the key in every layout. XKB_KEY_NoSymbol for a key that the
/// keyboard does not have, and for one that produces nothing, or several things at once.
xkb_keysym_t keyKeysym(xkb_keymap& keymap, xkb_layout_index_t layout, std::uint32_t virtualKeyCode);

}  // namespace tarnwick::platform
