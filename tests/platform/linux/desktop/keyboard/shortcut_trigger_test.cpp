#include "platform/linux/desktop/keyboard/shortcut_trigger.h"

#include <gtest/gtest.h>

#include "platform/hot_keys.h"

namespace tarnwick::platform {
namespace {

namespace modifier = hot_key_modifier;

constexpr std::uint32_t kCommand = modifier::kCommand;
constexpr std::uint32_t kCommandShift = modifier::kCommand | modifier::kShift;

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

TEST(MatchTrigger, TakesNoKeyForAnotherThatReadsLikeIt) {
    EXPECT_EQ(matchTrigger("Meta+^", kCommand, "dead_circumflex"), TriggerMatch::unclear);
    EXPECT_EQ(matchTrigger("Meta+I", kCommand, "idotless"), TriggerMatch::unclear);
    EXPECT_EQ(matchTrigger("Meta+1", kCommand, "KP_1"), TriggerMatch::unclear);
    EXPECT_EQ(matchTrigger("Meta+`", kCommand, "dead_circumflex"), TriggerMatch::other);
    EXPECT_EQ(matchTrigger("Meta+2", kCommand, "KP_1"), TriggerMatch::other);
    // With other modifiers it is another combination all the same.
    EXPECT_EQ(matchTrigger("Ctrl+^", kCommand, "dead_circumflex"), TriggerMatch::other);
    EXPECT_EQ(matchTrigger("<Super>dead_circumflex", kCommand, "dead_circumflex"),
              TriggerMatch::same);
    EXPECT_EQ(matchTrigger("Meta+ß", kCommand, "ssharp"), TriggerMatch::same);
}

TEST(MatchTrigger, TakesNoShiftedCharacterForAnotherKey) {
    EXPECT_EQ(matchTrigger("Meta+!", kCommandShift, "1"), TriggerMatch::unclear);
}

}  // namespace
}  // namespace tarnwick::platform
