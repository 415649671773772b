// SPDX-License-Identifier: MIT
#include "settings/shortcut_field.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "platform/testing/scripted_keyboard_layout.h"
#include "tests/settings/key_numbers.h"

namespace tarnwick {
namespace {

using platform::testing::ScriptedKeyboardLayout;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int64_t kCapsLock = 0x10000;

constexpr std::int64_t kDelete = 51;
constexpr std::int64_t kForwardDelete = 117;
constexpr std::int64_t kEscape = 53;

constexpr const char* kNeedsCommandMessage = "message Shortcut must include Command.";
constexpr const char* kTooManyMessage =
    "message Use Command by itself or with one of Shift, Option, or Control.";

class ShortcutFieldTest : public ::testing::Test {
 protected:
    ShortcutFieldTest() {
        field.onShortcutRecorded = [this](std::int64_t keyCode, std::int64_t modifiers) {
            steps.push_back("recorded " + std::to_string(keyCode) + " " +
                            std::to_string(modifiers));
        };
        field.onValidationMessageChanged = [this](const std::optional<std::string>& message) {
            steps.push_back(message ? "message " + *message : "no message");
        };
        field.makeFirstResponder = [this] { steps.push_back("focus"); };
        field.onRefresh = [this] { steps.push_back("refresh"); };
    }

    /// A field that shows Command-L and waits for a key press.
    void startRecording() {
        field.setShortcut(kL, kCommand);
        field.mouseDown();
        steps.clear();
    }
    void expectRecording() {
        EXPECT_TRUE(field.isRecording());
        EXPECT_EQ(field.text(), (ShortcutFieldText{"Press ⌘ + key…", true}));
    }
    void expectStopped(const ShortcutFieldText& text) {
        EXPECT_FALSE(field.isRecording());
        EXPECT_EQ(field.text(), text);
    }

    ScriptedKeyboardLayout layout{{{37, "L"}, {40, "K"}}};
    ShortcutField field{layout};
    std::vector<std::string> steps;
};

TEST_F(ShortcutFieldTest, BeginsWithoutAShortcutAndDoesNotRecord) {
    EXPECT_EQ(field.currentKeyCode(), -1);
    EXPECT_EQ(field.currentModifiers(), 0);
    expectStopped({"Click to record", true});
}

TEST_F(ShortcutFieldTest, TellsAToolkitHowToDrawIt) {
    EXPECT_EQ(ShortcutField::kHeight, 24);
    EXPECT_EQ(ShortcutField::kFontSize, 13);
}

TEST_F(ShortcutFieldTest, TellsAssistiveTechnologyWhatItIs) {
    EXPECT_STREQ(ShortcutField::kAccessibilityLabel, "Global shortcut recorder");
    EXPECT_STREQ(ShortcutField::kAccessibilityHelp,
                 "Click, then press Command and a key. Press Escape to cancel or Delete to clear.");
}

TEST_F(ShortcutFieldTest, ShowsAShortcutInTheColourOfLabels) {
    field.setShortcut(kK, kCommand | kShift);
    EXPECT_EQ(field.text(), (ShortcutFieldText{"⇧⌘K", false}));
    EXPECT_THAT(steps, ElementsAre("refresh"));
}

TEST_F(ShortcutFieldTest, AsksForARecordingWhereTheShortcutIsInvalid) {
    field.setShortcut(kL, kCommand);
    field.setShortcut(kL, kCommand | kShift | kOption);
    EXPECT_EQ(field.text(), (ShortcutFieldText{"Click to record", true}));
    EXPECT_EQ(field.currentModifiers(), kCommand | kShift | kOption);
}

TEST_F(ShortcutFieldTest, APressOfTheMouseStartsRecording) {
    field.setShortcut(kL, kCommand);
    steps.clear();
    field.mouseDown();
    expectRecording();
    EXPECT_THAT(steps, ElementsAre("focus", "no message", "refresh"));
    EXPECT_EQ(field.currentKeyCode(), kL);
}

TEST_F(ShortcutFieldTest, TellsWhenARecordingBeginsAndEnds) {
    std::vector<bool> told;
    field.onRecordingChanged = [&] { told.push_back(field.isRecording()); };
    field.mouseDown();
    field.mouseDown();
    EXPECT_THAT(told, ElementsAre(true));
    field.keyDown(kK, kOption);
    EXPECT_THAT(told, ElementsAre(true));
    field.keyDown(kK, kCommand);
    EXPECT_THAT(told, ElementsAre(true, false));
    field.mouseDown();
    field.keyDown(kEscape, 0);
    field.mouseDown();
    field.resignFirstResponder();
    field.resignFirstResponder();
    EXPECT_THAT(told, ElementsAre(true, false, true, false, true, false));
}

TEST_F(ShortcutFieldTest, ASecondPressOfTheMouseKeepsRecording) {
    startRecording();
    field.mouseDown();
    expectRecording();
}

TEST_F(ShortcutFieldTest, AShortcutFromOutsideDoesNotEndRecording) {
    startRecording();
    field.setShortcut(kK, kCommand);
    expectRecording();
    field.keyDown(kEscape, 0);
    expectStopped({"⌘K", false});
}

TEST_F(ShortcutFieldTest, ModifiersAreJudgedWhileTheyAreHeld) {
    startRecording();
    EXPECT_TRUE(field.flagsChanged(kOption));
    EXPECT_TRUE(field.flagsChanged(kOption | kCommand));
    EXPECT_TRUE(field.flagsChanged(kOption | kCommand | kShift));
    EXPECT_TRUE(field.flagsChanged(0));
    EXPECT_THAT(steps, ElementsAre(kNeedsCommandMessage, "refresh", "no message", "refresh",
                                   kTooManyMessage, "refresh", "no message", "refresh"));
    expectRecording();
}

TEST_F(ShortcutFieldTest, BitsOfTheDeviceDoNotCount) {
    startRecording();
    field.flagsChanged(0xFFFF);
    EXPECT_THAT(steps, ElementsAre("no message", "refresh"));
}

TEST_F(ShortcutFieldTest, EventsBeforeRecordingGoOnToTheNext) {
    EXPECT_FALSE(field.flagsChanged(kOption));
    EXPECT_FALSE(field.keyDown(kL, kCommand));
    EXPECT_FALSE(field.keyDown(kDelete, 0));
    EXPECT_FALSE(field.keyDown(kEscape, 0));
    EXPECT_THAT(steps, IsEmpty());
    EXPECT_EQ(field.currentKeyCode(), -1);
}

TEST_F(ShortcutFieldTest, EventsAfterRecordingGoOnToTheNext) {
    startRecording();
    field.keyDown(kK, kCommand);
    steps.clear();
    EXPECT_FALSE(field.keyDown(kL, kCommand));
    EXPECT_FALSE(field.flagsChanged(kCommand));
    EXPECT_THAT(steps, IsEmpty());
    EXPECT_EQ(field.currentKeyCode(), kK);
}

TEST_F(ShortcutFieldTest, AValidCombinationIsRecorded) {
    startRecording();
    EXPECT_TRUE(field.keyDown(kK, kCommand | kShift));
    EXPECT_THAT(steps, ElementsAre("recorded 40 1179648", "no message", "refresh"));
    expectStopped({"⇧⌘K", false});
    EXPECT_EQ(field.currentKeyCode(), kK);
    EXPECT_EQ(field.currentModifiers(), kCommand | kShift);
}

TEST_F(ShortcutFieldTest, OnlyTheFourModifiersAreRecorded) {
    startRecording();
    field.keyDown(kK, kCommand | kCapsLock | 0x800000 | 0x108);
    EXPECT_THAT(steps, ElementsAre("recorded 40 1048576", "no message", "refresh"));
    EXPECT_EQ(field.currentModifiers(), kCommand);
}

TEST_F(ShortcutFieldTest, KeyCodeZeroCanBeRecorded) {
    startRecording();
    field.keyDown(0, kCommand);
    EXPECT_THAT(steps, ElementsAre("recorded 0 1048576", "no message", "refresh"));
}

TEST_F(ShortcutFieldTest, APlainLetterAsksForCommandAndRecordingGoesOn) {
    startRecording();
    EXPECT_TRUE(field.keyDown(kK, 0));
    EXPECT_THAT(steps, ElementsAre(kNeedsCommandMessage, "refresh"));
    expectRecording();
    field.keyDown(kK, kCommand);
    expectStopped({"⌘K", false});
}

TEST_F(ShortcutFieldTest, TooManyModifiersAreRejectedAndRecordingGoesOn) {
    startRecording();
    EXPECT_TRUE(field.keyDown(kK, kCommand | kShift | kControl));
    EXPECT_THAT(steps, ElementsAre(kTooManyMessage, "refresh"));
    expectRecording();
    EXPECT_EQ(field.currentKeyCode(), kL);
}

TEST_F(ShortcutFieldTest, ModifiersWithoutAKeyAskForOne) {
    startRecording();
    EXPECT_TRUE(field.keyDown(-1, kCommand));
    EXPECT_THAT(steps, ElementsAre("message Shortcut must include a non-modifier key.", "refresh"));
    expectRecording();
}

TEST_F(ShortcutFieldTest, NeitherKeyNorModifierIsIgnored) {
    startRecording();
    EXPECT_TRUE(field.keyDown(-1, 0xFFFF));
    EXPECT_THAT(steps, IsEmpty());
    expectRecording();
}

TEST_F(ShortcutFieldTest, DeleteClears) {
    startRecording();
    EXPECT_TRUE(field.keyDown(kDelete, 0));
    EXPECT_THAT(steps, ElementsAre("recorded -1 0", "no message", "refresh"));
    expectStopped({"Click to record", true});
    EXPECT_EQ(field.currentKeyCode(), -1);
    EXPECT_EQ(field.currentModifiers(), 0);
}

TEST_F(ShortcutFieldTest, ForwardDeleteClears) {
    startRecording();
    EXPECT_TRUE(field.keyDown(kForwardDelete, 0));
    EXPECT_THAT(steps, ElementsAre("recorded -1 0", "no message", "refresh"));
    expectStopped({"Click to record", true});
}

TEST_F(ShortcutFieldTest, DeleteClearsAlsoWithCommand) {
    startRecording();
    field.keyDown(kDelete, kCommand);
    EXPECT_EQ(field.currentKeyCode(), -1);
    startRecording();
    field.keyDown(kForwardDelete, kCommand | kShift);
    EXPECT_EQ(field.currentKeyCode(), -1);
}

TEST_F(ShortcutFieldTest, EscapeKeepsTheShortcut) {
    startRecording();
    EXPECT_TRUE(field.keyDown(kEscape, 0));
    EXPECT_THAT(steps, ElementsAre("no message", "refresh"));
    expectStopped({"⌘L", false});
    EXPECT_EQ(field.currentKeyCode(), kL);
}

TEST_F(ShortcutFieldTest, EscapeCancelsAlsoWithCommand) {
    startRecording();
    field.keyDown(kEscape, kCommand);
    EXPECT_THAT(steps, ElementsAre("no message", "refresh"));
    expectStopped({"⌘L", false});
}

TEST_F(ShortcutFieldTest, LosingTheFocusCancels) {
    startRecording();
    field.flagsChanged(kOption);
    steps.clear();
    field.resignFirstResponder();
    EXPECT_THAT(steps, ElementsAre("no message", "refresh"));
    expectStopped({"⌘L", false});
}

TEST_F(ShortcutFieldTest, LosingTheFocusWithoutRecordingClearsTheMessage) {
    field.resignFirstResponder();
    EXPECT_THAT(steps, ElementsAre("no message", "refresh"));
}

TEST_F(ShortcutFieldTest, NobodyHasToListen) {
    ShortcutField silent(layout);
    silent.mouseDown();
    silent.flagsChanged(kOption);
    silent.keyDown(kK, kCommand);
    silent.resignFirstResponder();
    EXPECT_EQ(silent.text(), (ShortcutFieldText{"⌘K", false}));
}

TEST_F(ShortcutFieldTest, WhoIsToldOfARecordingSeesTheEndOfIt) {
    startRecording();
    bool wasRecording = true;
    field.onShortcutRecorded = [&](std::int64_t, std::int64_t) {
        wasRecording = field.isRecording();
        field.setShortcut(kL, kCommand | kControl);
    };
    field.keyDown(kK, kCommand);
    EXPECT_FALSE(wasRecording);
    expectStopped({"⌃⌘L", false});
}

}  // namespace
}  // namespace tarnwick
