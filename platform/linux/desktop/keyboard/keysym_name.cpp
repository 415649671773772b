#include "platform/linux/desktop/keyboard/keysym_name.h"

#include <QChar>
#include <algorithm>
#include <array>
#include <limits>
#include <string_view>
#include <xkbcommon/xkbcommon-keysyms.h>

namespace tarnwick::platform {
namespace {

struct Key {
    std::uint32_t virtualKeyCode;
    /// On a US keyboard.
    const char* keysym;
};

/// Keys whose character depends on the layout.
constexpr auto kCharacters = std::to_array<Key>({
    {0, "a"},
    {1, "s"},
    {2, "d"},
    {3, "f"},
    {4, "h"},
    {5, "g"},
    {6, "z"},
    {7, "x"},
    {8, "c"},
    {9, "v"},
    {10, "less"},
    {11, "b"},
    {12, "q"},
    {13, "w"},
    {14, "e"},
    {15, "r"},
    {16, "y"},
    {17, "t"},
    {18, "1"},
    {19, "2"},
    {20, "3"},
    {21, "4"},
    {22, "6"},
    {23, "5"},
    {24, "equal"},
    {25, "9"},
    {26, "7"},
    {27, "minus"},
    {28, "8"},
    {29, "0"},
    {30, "bracketright"},
    {31, "o"},
    {32, "u"},
    {33, "bracketleft"},
    {34, "i"},
    {35, "p"},
    {37, "l"},
    {38, "j"},
    {39, "apostrophe"},
    {40, "k"},
    {41, "semicolon"},
    {42, "backslash"},
    {43, "comma"},
    {44, "slash"},
    {45, "n"},
    {46, "m"},
    {47, "period"},
    {50, "grave"},
    {93, "yen"},
    {94, "underscore"},
});

/// Keys that are the same in every layout.
constexpr auto kOthers = std::to_array<Key>({
    {36, "Return"},
    {48, "Tab"},
    {49, "space"},
    {51, "BackSpace"},
    {53, "Escape"},
    {64, "F17"},
    {65, "KP_Decimal"},
    {67, "KP_Multiply"},
    {69, "KP_Add"},
    {71, "Num_Lock"},
    {72, "XF86AudioRaiseVolume"},
    {73, "XF86AudioLowerVolume"},
    {74, "XF86AudioMute"},
    {75, "KP_Divide"},
    {76, "KP_Enter"},
    {78, "KP_Subtract"},
    {79, "F18"},
    {80, "F19"},
    {81, "KP_Equal"},
    {82, "KP_0"},
    {83, "KP_1"},
    {84, "KP_2"},
    {85, "KP_3"},
    {86, "KP_4"},
    {87, "KP_5"},
    {88, "KP_6"},
    {89, "KP_7"},
    {90, "F20"},
    {91, "KP_8"},
    {92, "KP_9"},
    {95, "KP_Separator"},
    {96, "F5"},
    {97, "F6"},
    {98, "F7"},
    {99, "F3"},
    {100, "F8"},
    {101, "F9"},
    {102, "Hangul_Hanja"},
    {103, "F11"},
    {104, "Hangul"},
    {105, "F13"},
    {106, "F16"},
    {107, "F14"},
    {109, "F10"},
    {110, "Menu"},
    {111, "F12"},
    {113, "F15"},
    {114, "Insert"},
    {115, "Home"},
    {116, "Page_Up"},
    {117, "Delete"},
    {118, "F4"},
    {119, "End"},
    {120, "F2"},
    {121, "Page_Down"},
    {122, "F1"},
    {123, "Left"},
    {124, "Right"},
    {125, "Down"},
    {126, "Up"},
});

template <std::size_t size>
std::string_view find(const std::array<Key, size>& keys, std::uint32_t virtualKeyCode) {
    const auto found = std::ranges::find(keys, virtualKeyCode, &Key::virtualKeyCode);
    return found == keys.end() ? std::string_view() : found->keysym;
}

std::string nameOf(xkb_keysym_t keysym) {
    std::array<char, 64> name{};
    const int size = xkb_keysym_get_name(keysym, name.data(), name.size());
    return size > 0 ? std::string(name.data()) : std::string();
}

bool isDead(xkb_keysym_t keysym) {
    return keysym >= XKB_KEY_dead_grave && keysym <= XKB_KEY_dead_longsolidusoverlay;
}

/// A letter of the Latin script, or a sign that no script claims.
bool isOfLatinKeyboard(char32_t character) {
    constexpr char32_t kLastLatin = 0x24F;
    constexpr char32_t kFirstSign = 0x2000;
    constexpr char32_t kLastSign = 0x20CF;
    return character != 0 &&
           (character <= kLastLatin || (character >= kFirstSign && character <= kLastSign) ||
            QChar::script(character) == QChar::Script_Latin);
}

}  // namespace

std::string keysymName(std::uint32_t virtualKeyCode, KeysymLayout& layout) {
    const std::string_view onUSKeyboard = find(kCharacters, virtualKeyCode);
    if (onUSKeyboard.empty()) {
        return std::string(find(kOthers, virtualKeyCode));
    }
    const xkb_keysym_t keysym = layout.keysym(static_cast<std::uint16_t>(virtualKeyCode));
    return isDead(keysym) || isOfLatinKeyboard(xkb_keysym_to_utf32(keysym))
               ? nameOf(keysym)
               : std::string(onUSKeyboard);
}

}  // namespace tarnwick::platform
