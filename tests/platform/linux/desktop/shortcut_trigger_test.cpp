#include "platform/linux/desktop/shortcut_trigger.h"

#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>
#include <xkbcommon/xkbcommon.h>

#include "platform/hot_keys.h"
#include "platform/linux/desktop/key_codes.h"

namespace tarnwick::platform {
namespace {

namespace modifier = hot_key_modifier;

/// Says what a test writes down, and nothing for other keys.
class WrittenLayout final : public KeyboardLayout {
 public:
    explicit WrittenLayout(std::map<std::uint16_t, std::string> texts = {})
        : texts_(std::move(texts)) {}
    std::optional<std::string> displayText(std::uint16_t code) override {
        const auto found = texts_.find(code);
        return found == texts_.end() ? std::nullopt : std::optional(found->second);
    }

 private:
    std::map<std::uint16_t, std::string> texts_;
};

std::string nameOf(std::uint32_t code, std::map<std::uint16_t, std::string> texts = {}) {
    WrittenLayout layout(std::move(texts));
    return keysymName(code, layout);
}

constexpr std::uint32_t kCommand = modifier::kCommand;
constexpr std::uint32_t kCommandShift = modifier::kCommand | modifier::kShift;

TEST(KeysymName, IsThatOfAUSKeyboardWithoutALayout) {
    EXPECT_EQ(nameOf(37), "l");
    EXPECT_EQ(nameOf(18), "1");
    EXPECT_EQ(nameOf(41), "semicolon");
    EXPECT_EQ(nameOf(49), "space");
    EXPECT_EQ(nameOf(36), "Return");
    EXPECT_EQ(nameOf(96), "F5");
    EXPECT_EQ(nameOf(83), "KP_1");
    EXPECT_EQ(nameOf(123), "Left");
}

TEST(KeysymName, IsThatOfTheLayout) {
    EXPECT_EQ(nameOf(16, {{16, "Z"}}), "z");
    EXPECT_EQ(nameOf(41, {{41, "Ö"}}), "odiaeresis");
    EXPECT_EQ(nameOf(18, {{18, "&"}}), "ampersand");
    EXPECT_EQ(nameOf(41, {{41, "M"}}), "m");
}

TEST(KeysymName, OfAnotherScriptIsThatOfAUSKeyboard) {
    EXPECT_EQ(nameOf(37, {{37, "Д"}}), "l");
    EXPECT_EQ(nameOf(37, {{37, "Λ"}}), "l");
    EXPECT_EQ(nameOf(37, {{37, "SS"}}), "l");
    EXPECT_EQ(nameOf(37, {{37, ""}}), "l");
}

TEST(KeysymName, OfAKeyThatIsTheSameInEveryLayoutIsItsOwn) {
    EXPECT_EQ(nameOf(83, {{83, "1"}}), "KP_1");
    EXPECT_EQ(nameOf(49, {{49, " "}}), "space");
}

TEST(KeysymName, IsEmptyForNoKey) {
    EXPECT_EQ(nameOf(52), "");
    EXPECT_EQ(nameOf(127), "");
    EXPECT_EQ(nameOf(4'000'000'000), "");
    // Modifiers are no keys of a shortcut.
    EXPECT_EQ(nameOf(55), "");
}

TEST(KeysymName, IsKnownToXKBForEveryKey) {
    int named = 0;
    for (std::uint32_t code = 0; code < 128; ++code) {
        const std::string name = nameOf(code);
        if (!name.empty()) {
            ++named;
            EXPECT_NE(xkb_keysym_from_name(name.c_str(), XKB_KEYSYM_NO_FLAGS), XKB_KEY_NoSymbol)
                << name;
            EXPECT_EQ(matchTrigger(triggerText(kCommand, name), kCommand, name), TriggerMatch::same)
                << name;
        }
    }
    EXPECT_GT(named, 100);
}

TEST(KeysymName, IsThereForEveryKeyThatCanBeRecordedAndNoOther) {
    constexpr std::uint32_t kFirstModifier = 54;
    constexpr std::uint32_t kLastModifier = 63;
    for (std::uint32_t code = 0; code < 128; ++code) {
        const bool isModifier = code >= kFirstModifier && code <= kLastModifier;
        EXPECT_EQ(!nameOf(code).empty(), x11KeyCode(code).has_value() && !isModifier) << code;
    }
}

TEST(TriggerText, NamesTheModifiersFirst) {
    EXPECT_EQ(triggerText(kCommand, "l"), "LOGO+l");
    EXPECT_EQ(triggerText(kCommandShift, "F5"), "SHIFT+LOGO+F5");
    EXPECT_EQ(triggerText(kCommand | modifier::kOption, "l"), "ALT+LOGO+l");
    EXPECT_EQ(triggerText(kCommand | modifier::kControl, "l"), "CTRL+LOGO+l");
    EXPECT_EQ(triggerText(0, "l"), "l");
}

TEST(MatchTrigger, KnowsTheCombinationInManyForms) {
    for (const char* text : {"LOGO+l", "Meta+L", "Super+L", "Win+L", "<Super>l", "<Super>L",
                             "<Mod4>l", " super + l ", "Meta+L, Ctrl+Alt+P", "Meta+P; Meta+L"}) {
        EXPECT_EQ(matchTrigger(text, kCommand, "l"), TriggerMatch::same) << text;
    }
    EXPECT_EQ(matchTrigger("Shift+Meta+L", kCommandShift, "l"), TriggerMatch::same);
    EXPECT_EQ(matchTrigger("<Shift><Super>L", kCommandShift, "l"), TriggerMatch::same);
    EXPECT_EQ(matchTrigger("<Super><Primary>l", kCommand | modifier::kControl, "l"),
              TriggerMatch::same);
    EXPECT_EQ(matchTrigger("Meta+Alt+L", kCommand | modifier::kOption, "l"), TriggerMatch::same);
}

TEST(MatchTrigger, KnowsTheKeysByTheirManyNames) {
    EXPECT_EQ(matchTrigger("Meta+Esc", kCommand, "Escape"), TriggerMatch::same);
    EXPECT_EQ(matchTrigger("Meta+PgUp", kCommand, "Page_Up"), TriggerMatch::same);
    EXPECT_EQ(matchTrigger("<Super>Prior", kCommand, "Page_Up"), TriggerMatch::same);
    EXPECT_EQ(matchTrigger("Meta+Return", kCommand, "Return"), TriggerMatch::same);
    EXPECT_EQ(matchTrigger("Meta+Space", kCommand, "space"), TriggerMatch::same);
    EXPECT_EQ(matchTrigger("Meta+,", kCommand, "comma"), TriggerMatch::same);
    EXPECT_EQ(matchTrigger("Meta++", kCommand, "plus"), TriggerMatch::same);
    EXPECT_EQ(matchTrigger("<Super>+", kCommand, "plus"), TriggerMatch::same);
    EXPECT_EQ(matchTrigger("Meta+<", kCommand, "less"), TriggerMatch::same);
    EXPECT_EQ(matchTrigger("Meta+Ö", kCommand, "odiaeresis"), TriggerMatch::same);
    EXPECT_EQ(matchTrigger("f5", 0, "F5"), TriggerMatch::same);
}

TEST(MatchTrigger, KnowsAnotherCombination) {
    for (const char* text : {"Meta+K", "Ctrl+L", "L", "Shift+Meta+L", "<Super>k", "Alt+F4",
                             "Meta+K, Meta+J", "Meta+Num_Lock"}) {
        EXPECT_EQ(matchTrigger(text, kCommand, "l"), TriggerMatch::other) << text;
    }
    EXPECT_EQ(matchTrigger("Shift+Meta+K", kCommandShift, "l"), TriggerMatch::other);
    EXPECT_EQ(matchTrigger("Alt+L", kCommandShift, "l"), TriggerMatch::other);
}

TEST(MatchTrigger, DoesNotGuess) {
    for (const char* text : {"Umschalt+Meta+L", "Press the key", "Meta+", "Meta", "<Super>",
                             "Meta+K, Umschalt+L", "Meta+Enter key", "⊞L", "Hyper+K"}) {
        EXPECT_EQ(matchTrigger(text, kCommand, "l"), TriggerMatch::unclear) << text;
    }
}

TEST(MatchTrigger, TakesNoShiftedCharacterForAnotherKey) {
    EXPECT_EQ(matchTrigger("Meta+!", kCommandShift, "1"), TriggerMatch::unclear);
}

}  // namespace
}  // namespace tarnwick::platform
