#include "platform/linux/desktop/keyboard/shortcut_trigger.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <array>
#include <optional>
#include <vector>
#include <xkbcommon/xkbcommon.h>

#include "platform/hot_keys.h"
#include "platform/linux/desktop/keyboard/key_text.h"

namespace tarnwick::platform {
namespace {

namespace modifier = hot_key_modifier;

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

/// Two keys with the same text: a dead key and its accent, the two letters whose capital one is I,
/// a digit of the keypad and that of the top row. People read the one as the other.
bool looksAlike(xkb_keysym_t one, xkb_keysym_t other) {
    const std::string text = keysymText(one);
    return !text.empty() && text == keysymText(other);
}

TriggerMatch match(const QString& text, const Combination& wanted) {
    const auto found = parse(text);
    if (!found) {
        return TriggerMatch::unclear;
    }
    if (found->modifiers == wanted.modifiers) {
        return found->keysym == wanted.keysym             ? TriggerMatch::same
               : looksAlike(found->keysym, wanted.keysym) ? TriggerMatch::unclear
                                                          : TriggerMatch::other;
    }
    // Instead of Shift the desktop may name what the key produces with it.
    const bool canBeShifted = (wanted.modifiers & modifier::kShift) != 0 &&
                              found->modifiers == (wanted.modifiers & ~modifier::kShift);
    return canBeShifted ? TriggerMatch::unclear : TriggerMatch::other;
}

}  // namespace

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
