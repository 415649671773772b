// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/key_text.h"

#include <QChar>
#include <QString>
#include <algorithm>
#include <array>
#include <span>
#include <utility>
#include <xkbcommon/xkbcommon-keysyms.h>

#include "platform/linux/desktop/keyboard/key_codes.h"

namespace tarnwick::platform {
namespace {

/// Dead keys that layouts have without modifiers, with their accents as characters. The library
/// gives no text for these keys.
constexpr auto kAccents = std::to_array<std::pair<xkb_keysym_t, char32_t>>({
    {XKB_KEY_dead_grave, U'`'},
    {XKB_KEY_dead_acute, U'´'},
    {XKB_KEY_dead_circumflex, U'^'},
    {XKB_KEY_dead_tilde, U'~'},
    {XKB_KEY_dead_macron, U'¯'},
    {XKB_KEY_dead_abovedot, U'˙'},
    {XKB_KEY_dead_diaeresis, U'¨'},
    {XKB_KEY_dead_abovering, U'˚'},
    {XKB_KEY_dead_caron, U'ˇ'},
    {XKB_KEY_dead_cedilla, U'¸'},
});

/// A key of the keypad that moves, unless Num Lock makes a digit of it.
bool movesOnKeypad(xkb_keysym_t keysym) {
    return keysym >= XKB_KEY_KP_Home && keysym <= XKB_KEY_KP_Delete;
}

/// A letter of the Latin script, or a character that belongs to no script.
bool isOfLatinKeyboard(xkb_keysym_t keysym) {
    const auto script = QChar::script(xkb_keysym_to_utf32(keysym));
    return keysym != XKB_KEY_NoSymbol &&
           (script == QChar::Script_Latin || script == QChar::Script_Common);
}

/// A key in the layout that it uses.
struct Place {
    xkb_keycode_t key;
    xkb_layout_index_t layout;
};

std::optional<Place> placeOf(xkb_keymap& keymap, xkb_layout_index_t layout,
                             std::uint32_t virtualKeyCode) {
    const auto key = x11KeyCode(virtualKeyCode);
    const XkbState state(xkb_state_new(&keymap));
    if (!key || !state) {
        return std::nullopt;
    }
    // A key may have fewer layouts than the keymap; the state knows which one it uses then.
    xkb_state_update_mask(state.get(), 0, 0, 0, 0, 0, layout);
    const xkb_layout_index_t ownLayout = xkb_state_key_get_layout(state.get(), *key);
    return ownLayout == XKB_LAYOUT_INVALID ? std::nullopt : std::optional(Place{*key, ownLayout});
}

std::span<const xkb_keysym_t> keysymsAt(xkb_keymap& keymap, const Place& place,
                                        xkb_level_index_t level) {
    const xkb_keysym_t* found = nullptr;
    const int count =
        xkb_keymap_key_get_syms_by_level(&keymap, place.key, place.layout, level, &found);
    return {found, static_cast<std::size_t>(std::max(count, 0))};
}

/// What the key produces; a key of the keypad its digit.
std::span<const xkb_keysym_t> keysyms(xkb_keymap& keymap, const Place& place) {
    const auto produced = keysymsAt(keymap, place, 0);
    return !produced.empty() && movesOnKeypad(produced.front()) ? keysymsAt(keymap, place, 1)
                                                                : produced;
}

/// The character of a keysym; empty if the character is invisible.
QString characterOf(xkb_keysym_t keysym) {
    const auto dead =
        std::ranges::find(kAccents, keysym, [](const auto& each) { return each.first; });
    const char32_t character =
        dead != kAccents.end() ? dead->second : char32_t{xkb_keysym_to_utf32(keysym)};
    return QChar::category(character) == QChar::Other_Control ? QString()
                                                              : QString::fromUcs4(&character, 1);
}

XkbContext makeContext(int flags) {
    XkbContext context(
        xkb_context_new(static_cast<xkb_context_flags>(flags | XKB_CONTEXT_NO_ENVIRONMENT_NAMES)));
    if (context) {
        // Users cannot repair a faulty keymap, so its errors are not printed.
        xkb_context_set_log_level(context.get(), XKB_LOG_LEVEL_CRITICAL);
    }
    return context;
}

}  // namespace

XkbContext makeServerContext() {
    return makeContext(XKB_CONTEXT_NO_DEFAULT_INCLUDES);
}

XkbKeymap installedKeymap(const char* layouts) {
    const XkbContext context = makeContext(XKB_CONTEXT_NO_FLAGS);
    const xkb_rule_names names = {"evdev", "pc105", layouts, "", ""};
    return XkbKeymap(
        context ? xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS)
                : nullptr);
}

std::optional<std::string> keyText(xkb_keymap& keymap, xkb_layout_index_t layout,
                                   std::uint16_t virtualKeyCode) {
    const auto place = placeOf(keymap, layout, virtualKeyCode);
    if (!place) {
        return std::nullopt;
    }
    QString text;
    for (const xkb_keysym_t keysym : keysyms(keymap, *place)) {
        text += characterOf(keysym);
    }
    return text.isEmpty() ? std::nullopt : std::optional(text.toUpper().toStdString());
}

xkb_keysym_t keyKeysym(xkb_keymap& keymap, xkb_layout_index_t layout,
                       std::uint32_t virtualKeyCode) {
    const auto place = placeOf(keymap, layout, virtualKeyCode);
    if (!place) {
        return XKB_KEY_NoSymbol;
    }
    const auto keysymIn = [&](xkb_layout_index_t each) -> xkb_keysym_t {
        const auto produced = keysyms(keymap, {place->key, each});
        return produced.size() == 1 ? produced.front() : XKB_KEY_NoSymbol;
    };
    const xkb_keysym_t own = keysymIn(place->layout);
    if (isOfLatinKeyboard(own)) {
        return own;
    }
    const xkb_layout_index_t layouts = xkb_keymap_num_layouts_for_key(&keymap, place->key);
    for (xkb_layout_index_t each = 0; each < layouts; ++each) {
        if (const xkb_keysym_t other = keysymIn(each); isOfLatinKeyboard(other)) {
            return other;
        }
    }
    return own;
}

}  // namespace tarnwick::platform
