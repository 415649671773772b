#include "platform/linux/desktop/keyboard/key_text.h"

#include <QString>
#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <xkbcommon/xkbcommon-keysyms.h>

#include "platform/linux/desktop/keyboard/key_codes.h"

namespace tarnwick::platform {
namespace {

struct DeadKey {
    xkb_keysym_t keysym;
    std::string_view accent;
};

/// Dead keys whose accent is a character by itself; the library gives no text for any of them.
constexpr auto kDeadKeys = std::to_array<DeadKey>({
    {XKB_KEY_dead_grave, "`"},
    {XKB_KEY_dead_acute, "´"},
    {XKB_KEY_dead_circumflex, "^"},
    {XKB_KEY_dead_tilde, "~"},
    {XKB_KEY_dead_macron, "¯"},
    {XKB_KEY_dead_breve, "˘"},
    {XKB_KEY_dead_abovedot, "˙"},
    {XKB_KEY_dead_diaeresis, "¨"},
    {XKB_KEY_dead_abovering, "˚"},
    {XKB_KEY_dead_doubleacute, "˝"},
    {XKB_KEY_dead_caron, "ˇ"},
    {XKB_KEY_dead_cedilla, "¸"},
    {XKB_KEY_dead_ogonek, "˛"},
    {XKB_KEY_dead_iota, "ͺ"},
    {XKB_KEY_dead_voiced_sound, "゛"},
    {XKB_KEY_dead_semivoiced_sound, "゜"},
    {XKB_KEY_dead_currency, "¤"},
    {XKB_KEY_dead_greek, "µ"},
});

/// Longest text of one keysym: four bytes, or six in the library's eyes, and the final zero.
constexpr std::size_t kLongestText = 8;

std::string upperCase(const std::string& text) {
    return QString::fromStdString(text).toUpper().toStdString();
}

/// A key of the keypad that moves, unless Num Lock makes a digit of it.
bool movesOnKeypad(xkb_keysym_t keysym) {
    return keysym >= XKB_KEY_KP_Home && keysym <= XKB_KEY_KP_Delete;
}

/// A key in the layout that it uses.
struct Place {
    xkb_keycode_t key;
    xkb_layout_index_t layout;
};

std::optional<Place> placeOf(xkb_keymap& keymap, xkb_layout_index_t layout,
                             std::uint16_t virtualKeyCode) {
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

std::span<const xkb_keysym_t> keysyms(xkb_keymap& keymap, const Place& place,
                                      xkb_level_index_t level) {
    const xkb_keysym_t* found = nullptr;
    const int count =
        xkb_keymap_key_get_syms_by_level(&keymap, place.key, place.layout, level, &found);
    return {found, static_cast<std::size_t>(std::max(count, 0))};
}

}  // namespace

XkbContext makeServerContext() {
    XkbContext context(xkb_context_new(static_cast<xkb_context_flags>(
        XKB_CONTEXT_NO_DEFAULT_INCLUDES | XKB_CONTEXT_NO_ENVIRONMENT_NAMES)));
    if (context) {
        // What is wrong with a server's keymap is nothing that the user could put right.
        xkb_context_set_log_level(context.get(), XKB_LOG_LEVEL_CRITICAL);
    }
    return context;
}

std::string keysymText(xkb_keysym_t keysym) {
    const auto dead = std::find_if(kDeadKeys.begin(), kDeadKeys.end(),
                                   [keysym](const DeadKey& key) { return key.keysym == keysym; });
    if (dead != kDeadKeys.end()) {
        return upperCase(std::string(dead->accent));
    }
    std::array<char, kLongestText> text{};
    const int size = xkb_keysym_to_utf8(keysym, text.data(), text.size());
    // The size counts the final zero; Return, Tab and the like are control characters.
    if (size < 2 || static_cast<unsigned char>(text[0]) < 0x20 || text[0] == 0x7F) {
        return {};
    }
    return upperCase(text.data());
}

std::optional<std::string> keyText(xkb_keymap& keymap, xkb_layout_index_t layout,
                                   std::uint16_t virtualKeyCode) {
    const auto place = placeOf(keymap, layout, virtualKeyCode);
    if (!place) {
        return std::nullopt;
    }
    auto produced = keysyms(keymap, *place, 0);
    if (!produced.empty() && movesOnKeypad(produced.front())) {
        produced = keysyms(keymap, *place, 1);
    }
    std::string text;
    for (const xkb_keysym_t keysym : produced) {
        text += keysymText(keysym);
    }
    return text.empty() ? std::nullopt : std::optional(text);
}

xkb_keysym_t keyKeysym(xkb_keymap& keymap, xkb_layout_index_t layout,
                       std::uint16_t virtualKeyCode) {
    const auto place = placeOf(keymap, layout, virtualKeyCode);
    if (!place) {
        return XKB_KEY_NoSymbol;
    }
    const auto produced = keysyms(keymap, *place, 0);
    return produced.size() == 1 ? produced.front() : XKB_KEY_NoSymbol;
}

}  // namespace tarnwick::platform
