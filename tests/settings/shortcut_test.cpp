// SPDX-License-Identifier: MIT
#include "settings/shortcut.h"

#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "platform/testing/scripted_keyboard_layout.h"
#include "tests/settings/key_numbers.h"

namespace tarnwick {
namespace {

using platform::testing::ScriptedKeyboardLayout;

/// Caps lock, function key, and what tells left from right.
constexpr std::int64_t kOtherBits = 0x10000 | 0x800000 | 0xFFFF;

constexpr std::int64_t kQ = 12;

constexpr const char* kNeedsCommand = "Shortcut must include Command.";
constexpr const char* kTooMany = "Use Command by itself or with one of Shift, Option, or Control.";

/// Every set of the four modifiers.
std::vector<std::int64_t> everyModifierSet() {
    std::vector<std::int64_t> sets;
    for (std::int64_t bits = 0; bits < 16; ++bits) {
        sets.push_back(bits << 17);
    }
    return sets;
}

TEST(ExtraModifierCount, CountsShiftOptionAndControl) {
    EXPECT_EQ(extraModifierCount(0), 0);
    EXPECT_EQ(extraModifierCount(kCommand), 0);
    EXPECT_EQ(extraModifierCount(kShift), 1);
    EXPECT_EQ(extraModifierCount(kOption), 1);
    EXPECT_EQ(extraModifierCount(kControl), 1);
    EXPECT_EQ(extraModifierCount(kShift | kOption), 2);
    EXPECT_EQ(extraModifierCount(kShift | kControl), 2);
    EXPECT_EQ(extraModifierCount(kOption | kControl | kCommand), 2);
    EXPECT_EQ(extraModifierCount(kShift | kOption | kControl), 3);
    EXPECT_EQ(extraModifierCount(kShift | kOption | kControl | kCommand), 3);
}

TEST(ExtraModifierCount, IgnoresAllOtherBits) {
    EXPECT_EQ(extraModifierCount(kOtherBits), 0);
    EXPECT_EQ(extraModifierCount(kOtherBits | kShift), 1);
}

TEST(ShortcutValidation, HasTheNumbersOfItsVerdicts) {
    EXPECT_EQ(static_cast<int>(ShortcutValidation::missingCommand), 0);
    EXPECT_EQ(static_cast<int>(ShortcutValidation::missingKey), 1);
    EXPECT_EQ(static_cast<int>(ShortcutValidation::tooManyModifiers), 2);
    EXPECT_EQ(static_cast<int>(ShortcutValidation::valid), 3);
    EXPECT_EQ(static_cast<int>(ShortcutValidation::empty), 4);
}

TEST(ValidateShortcut, CommandWithAKeyIsValid) {
    EXPECT_EQ(validateShortcut(kL, kCommand), ShortcutValidation::valid);
}

TEST(ValidateShortcut, CommandWithOneMoreIsValid) {
    EXPECT_EQ(validateShortcut(kL, kCommand | kShift), ShortcutValidation::valid);
    EXPECT_EQ(validateShortcut(kL, kCommand | kOption), ShortcutValidation::valid);
    EXPECT_EQ(validateShortcut(kL, kCommand | kControl), ShortcutValidation::valid);
}

TEST(ValidateShortcut, CommandWithTwoOrThreeMoreIsTooMuch) {
    EXPECT_EQ(validateShortcut(kL, kCommand | kShift | kOption),
              ShortcutValidation::tooManyModifiers);
    EXPECT_EQ(validateShortcut(kL, kCommand | kShift | kControl),
              ShortcutValidation::tooManyModifiers);
    EXPECT_EQ(validateShortcut(kL, kCommand | kOption | kControl),
              ShortcutValidation::tooManyModifiers);
    EXPECT_EQ(validateShortcut(kL, kCommand | kControl | kOption | kShift),
              ShortcutValidation::tooManyModifiers);
}

TEST(ValidateShortcut, NothingAtAllIsEmpty) {
    EXPECT_EQ(validateShortcut(-1, 0), ShortcutValidation::empty);
    EXPECT_EQ(validateShortcut(std::numeric_limits<std::int64_t>::min(), 0),
              ShortcutValidation::empty);
    EXPECT_EQ(validateShortcut(-1, kOtherBits), ShortcutValidation::empty);
}

TEST(ValidateShortcut, AKeyAloneLacksCommand) {
    EXPECT_EQ(validateShortcut(kL, 0), ShortcutValidation::missingCommand);
    EXPECT_EQ(validateShortcut(0, 0), ShortcutValidation::missingCommand);
    EXPECT_EQ(validateShortcut(kL, kOtherBits), ShortcutValidation::missingCommand);
}

TEST(ValidateShortcut, OtherModifiersDoNotStandInForCommand) {
    EXPECT_EQ(validateShortcut(kQ, kOption), ShortcutValidation::missingCommand);
    EXPECT_EQ(validateShortcut(kQ, kShift | kControl), ShortcutValidation::missingCommand);
    EXPECT_EQ(validateShortcut(kQ, kShift | kControl | kOption),
              ShortcutValidation::missingCommand);
    EXPECT_EQ(validateShortcut(-1, kOption), ShortcutValidation::missingCommand);
    EXPECT_EQ(validateShortcut(-1, kOption | kShift | kControl),
              ShortcutValidation::missingCommand);
}

TEST(ValidateShortcut, GoodModifiersWithoutAKeyLackTheKey) {
    EXPECT_EQ(validateShortcut(-1, kCommand), ShortcutValidation::missingKey);
    EXPECT_EQ(validateShortcut(-1, kCommand | kShift), ShortcutValidation::missingKey);
    EXPECT_EQ(validateShortcut(std::numeric_limits<std::int64_t>::min(), kCommand),
              ShortcutValidation::missingKey);
}

TEST(ValidateShortcut, TooManyModifiersCountBeforeTheMissingKey) {
    EXPECT_EQ(validateShortcut(-1, kCommand | kShift | kOption),
              ShortcutValidation::tooManyModifiers);
}

TEST(ValidateShortcut, KeyCodeZeroIsAKey) {
    EXPECT_EQ(validateShortcut(0, kCommand), ShortcutValidation::valid);
}

TEST(ValidateShortcut, IgnoresAllOtherBits) {
    EXPECT_EQ(validateShortcut(kL, kCommand | kOtherBits), ShortcutValidation::valid);
}

TEST(IsValidShortcut, MeansTheVerdictValidAndNoOther) {
    int valid = 0;
    for (const std::int64_t modifiers : everyModifierSet()) {
        for (const std::int64_t key : {std::int64_t{-1}, std::int64_t{0}, kL}) {
            const bool isValid = isValidShortcut(key, modifiers);
            EXPECT_EQ(isValid, validateShortcut(key, modifiers) == ShortcutValidation::valid);
            valid += isValid ? 1 : 0;
        }
    }
    // Command alone and with one of three, for two keys.
    EXPECT_EQ(valid, 8);
}

TEST(ModifierValidationMessage, SaysNothingAboutNoModifier) {
    EXPECT_EQ(modifierValidationMessage(0), std::nullopt);
    EXPECT_EQ(modifierValidationMessage(kOtherBits), std::nullopt);
}

TEST(ModifierValidationMessage, AsksForCommand) {
    EXPECT_EQ(modifierValidationMessage(kOption), kNeedsCommand);
    EXPECT_EQ(modifierValidationMessage(kShift | kControl | kOption), kNeedsCommand);
}

TEST(ModifierValidationMessage, SaysWhenThereAreTooMany) {
    EXPECT_EQ(modifierValidationMessage(kCommand | kShift | kOption), kTooMany);
    EXPECT_EQ(modifierValidationMessage(kCommand | kShift | kOption | kControl), kTooMany);
}

TEST(ModifierValidationMessage, SaysNothingAboutGoodModifiers) {
    EXPECT_EQ(modifierValidationMessage(kCommand), std::nullopt);
    EXPECT_EQ(modifierValidationMessage(kCommand | kControl | kOtherBits), std::nullopt);
}

TEST(RejectionMessage, TellsWhatIsWrong) {
    EXPECT_EQ(rejectionMessage(ShortcutValidation::missingCommand), kNeedsCommand);
    EXPECT_EQ(rejectionMessage(ShortcutValidation::missingKey),
              "Shortcut must include a non-modifier key.");
    EXPECT_EQ(rejectionMessage(ShortcutValidation::tooManyModifiers), kTooMany);
    EXPECT_EQ(rejectionMessage(ShortcutValidation::valid), std::nullopt);
    EXPECT_EQ(rejectionMessage(ShortcutValidation::empty), std::nullopt);
}

class ShortcutDisplayString : public ::testing::Test {
 protected:
    std::string display(std::int64_t keyCode, std::int64_t modifiers) {
        return shortcutDisplayString(keyCode, modifiers, layout);
    }

    ScriptedKeyboardLayout layout{{{37, "L"}, {40, "K"}}};
};

TEST_F(ShortcutDisplayString, ShowsCommandBeforeTheKey) {
    EXPECT_EQ(display(kL, kCommand), "⌘L");
}

TEST_F(ShortcutDisplayString, ShowsTheOtherModifierFirst) {
    EXPECT_EQ(display(kK, kCommand | kShift), "⇧⌘K");
    EXPECT_EQ(display(kK, kCommand | kOption), "⌥⌘K");
    EXPECT_EQ(display(kK, kCommand | kControl), "⌃⌘K");
}

TEST_F(ShortcutDisplayString, IsNoneForWhatIsNoShortcut) {
    EXPECT_EQ(display(kL, kCommand | kShift | kOption), "None");
    EXPECT_EQ(display(-1, 0), "None");
    EXPECT_EQ(display(-1, kCommand), "None");
    EXPECT_EQ(display(kQ, kOption), "None");
    EXPECT_EQ(display(kL, 0), "None");
}

TEST_F(ShortcutDisplayString, IgnoresAllOtherBits) {
    EXPECT_EQ(display(kL, kCommand | kOtherBits), "⌘L");
}

TEST_F(ShortcutDisplayString, UsesFixedNames) {
    EXPECT_EQ(display(49, kCommand), "⌘Space");
    EXPECT_EQ(display(96, kCommand | kShift), "⇧⌘F5");
}

TEST_F(ShortcutDisplayString, NamesAKeyWithoutATextByItsCode) {
    EXPECT_EQ(display(105, kCommand), "⌘Key 105");
}

TEST(ShortcutDeathTest, NegativeModifiersAreAFault) {
    ScriptedKeyboardLayout layout;
    for (const std::int64_t flags : {std::int64_t{-1}, std::numeric_limits<std::int64_t>::min()}) {
        EXPECT_DEATH(extraModifierCount(flags), "");
        EXPECT_DEATH(validateShortcut(kL, flags), "");
        EXPECT_DEATH(validateShortcut(-1, flags), "");
        EXPECT_DEATH(isValidShortcut(kL, flags), "");
        EXPECT_DEATH(modifierValidationMessage(flags), "");
        EXPECT_DEATH(shortcutDisplayString(-1, flags, layout), "");
    }
}

}  // namespace
}  // namespace tarnwick
