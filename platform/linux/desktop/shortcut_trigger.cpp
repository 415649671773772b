#include "platform/linux/desktop/shortcut_trigger.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <array>
#include <optional>
#include <vector>
#include <xkbcommon/xkbcommon.h>

#include "platform/hot_keys.h"

namespace tarnwick::platform {
namespace {

namespace modifier = hot_key_modifier;

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

/// The characters up to here are those of Latin scripts and their signs.
constexpr char32_t kLastLatin = 0x24F;

std::string nameOf(xkb_keysym_t keysym) {
    std::array<char, 64> name{};
    const int size = xkb_keysym_get_name(keysym, name.data(), name.size());
    return size > 0 ? std::string(name.data()) : std::string();
}

/// Absent when the text is not one Latin character.
std::optional<xkb_keysym_t> latinKeysym(const std::string& text) {
    const QList<uint> characters = QString::fromStdString(text).toLower().toUcs4();
    if (characters.size() != 1 || characters.front() > kLastLatin) {
        return std::nullopt;
    }
    const xkb_keysym_t keysym = xkb_utf32_to_keysym(characters.front());
    return keysym == XKB_KEY_NoSymbol ? std::nullopt : std::optional(keysym);
}

struct Combination {
    std::uint32_t modifiers = 0;
    xkb_keysym_t keysym = XKB_KEY_NoSymbol;
};

struct ModifierName {
    const char* name;
    std::uint32_t bit;
};
constexpr auto kModifierNames = std::to_array<ModifierName>({
    {"logo", modifier::kCommand},
    {"super", modifier::kCommand},
    {"meta", modifier::kCommand},
    {"win", modifier::kCommand},
    {"windows", modifier::kCommand},
    {"mod4", modifier::kCommand},
    {"shift", modifier::kShift},
    {"ctrl", modifier::kControl},
    {"control", modifier::kControl},
    {"primary", modifier::kControl},
    {"alt", modifier::kOption},
    {"mod1", modifier::kOption},
});

struct KeyAlias {
    const char* name;
    xkb_keysym_t keysym;
};
/// What keys are called beside their XKB names.
constexpr auto kKeyAliases = std::to_array<KeyAlias>({
    {"esc", XKB_KEY_Escape},
    {"del", XKB_KEY_Delete},
    {"ins", XKB_KEY_Insert},
    {"pgup", XKB_KEY_Page_Up},
    {"pageup", XKB_KEY_Page_Up},
    {"pgdown", XKB_KEY_Page_Down},
    {"pgdn", XKB_KEY_Page_Down},
    {"pagedown", XKB_KEY_Page_Down},
});

std::optional<std::uint32_t> modifierNamed(const QString& name) {
    const QString lower = name.trimmed().toLower();
    for (const ModifierName& each : kModifierNames) {
        if (lower == each.name) {
            return each.bit;
        }
    }
    return std::nullopt;
}

/// XKB_KEY_NoSymbol when no key is called so.
xkb_keysym_t keyNamed(const QString& name) {
    const QString lower = name.trimmed().toLower();
    for (const KeyAlias& each : kKeyAliases) {
        if (lower == each.name) {
            return each.keysym;
        }
    }
    const QList<uint> characters = lower.toUcs4();
    if (characters.size() == 1) {
        return xkb_utf32_to_keysym(characters.front());
    }
    // Without regard to case small letters win over capital ones.
    return xkb_keysym_to_lower(
        xkb_keysym_from_name(lower.toUtf8().constData(), XKB_KEYSYM_CASE_INSENSITIVE));
}

/// The words between the modifiers' signs: "<Shift><Super>l" or "Shift+Super+L".
QStringList wordsOf(QString text) {
    QStringList words;
    while (text.startsWith('<') && text.contains('>')) {
        words.append(text.mid(1, text.indexOf('>') - 1));
        text.remove(0, text.indexOf('>') + 1);
    }
    // The sign between the keys can be the key, too.
    const bool isPlusKey = text == "+" || text.endsWith("++");
    if (isPlusKey) {
        text.chop(1);
    }
    words.append(text.split('+', isPlusKey ? Qt::SkipEmptyParts : Qt::KeepEmptyParts));
    if (isPlusKey) {
        words.append("+");
    }
    return words;
}

std::optional<Combination> parse(const QString& text) {
    QStringList words = wordsOf(text.trimmed());
    Combination combination;
    combination.keysym = keyNamed(words.takeLast());
    for (const QString& word : words) {
        const auto bit = modifierNamed(word);
        if (!bit) {
            return std::nullopt;
        }
        combination.modifiers |= *bit;
    }
    return combination.keysym == XKB_KEY_NoSymbol ? std::nullopt : std::optional(combination);
}

TriggerMatch match(const QString& text, const Combination& wanted) {
    const auto found = parse(text);
    if (!found) {
        return TriggerMatch::unclear;
    }
    if (found->keysym == wanted.keysym && found->modifiers == wanted.modifiers) {
        return TriggerMatch::same;
    }
    // Instead of Shift the desktop may name what the key produces with it.
    const bool canBeShifted = (wanted.modifiers & modifier::kShift) != 0 &&
                              found->modifiers == (wanted.modifiers & ~modifier::kShift);
    return canBeShifted ? TriggerMatch::unclear : TriggerMatch::other;
}

}  // namespace

std::string keysymName(std::uint32_t virtualKeyCode, KeyboardLayout& layout) {
    const std::string_view onUSKeyboard = find(kCharacters, virtualKeyCode);
    if (onUSKeyboard.empty()) {
        return std::string(find(kOthers, virtualKeyCode));
    }
    const auto text = layout.displayText(static_cast<std::uint16_t>(virtualKeyCode));
    const auto keysym = text ? latinKeysym(*text) : std::nullopt;
    const std::string name = keysym ? nameOf(*keysym) : std::string();
    return name.empty() ? std::string(onUSKeyboard) : name;
}

std::string triggerText(std::uint32_t modifiers, std::string_view keysymName) {
    std::string text;
    for (const auto& [name, bit] :
         {ModifierName{"CTRL+", modifier::kControl}, ModifierName{"ALT+", modifier::kOption},
          ModifierName{"SHIFT+", modifier::kShift}, ModifierName{"LOGO+", modifier::kCommand}}) {
        text += (modifiers & bit) != 0 ? name : "";
    }
    return text.append(keysymName);
}

TriggerMatch matchTrigger(std::string_view description, std::uint32_t modifiers,
                          std::string_view keysymName) {
    const Combination wanted{
        modifiers, xkb_keysym_from_name(std::string(keysymName).c_str(), XKB_KEYSYM_NO_FLAGS)};
    const QString text = QString::fromUtf8(description.data(), qsizetype(description.size()));
    std::vector<TriggerMatch> matches = {match(text, wanted)};
    for (const char* separator : {", ", "; "}) {
        if (matches.size() == 1 && matches.front() == TriggerMatch::unclear &&
            text.contains(separator)) {
            matches.clear();
            for (const QString& each : text.split(separator)) {
                matches.push_back(match(each, wanted));
            }
        }
    }
    for (const TriggerMatch decisive : {TriggerMatch::same, TriggerMatch::unclear}) {
        if (std::ranges::find(matches, decisive) != matches.end()) {
            return decisive;
        }
    }
    return TriggerMatch::other;
}

}  // namespace tarnwick::platform
