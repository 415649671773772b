// SPDX-License-Identifier: MIT
#include "ui/settings/shortcut_editor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/testing/scripted_keyboard_layout.h"

namespace tarnwick {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int64_t kCommand = 0x100000;
constexpr std::int64_t kOption = 0x80000;
const StatusLine kConflict{"exclamationmark.triangle.fill", Tint::orange,
                           "This shortcut is already in use. Choose a different combination."};
const StatusLine kFailed{"exclamationmark.triangle.fill", Tint::orange,
                         "The shortcut could not be activated. Choose a different combination."};
const StatusLine kActive{"checkmark.circle.fill", Tint::green, "Shortcut active: ⌘L"};
const StatusLine kRejected{"exclamationmark.triangle.fill", Tint::orange, "why"};

class StatusLinesTest : public ::testing::Test {
 protected:
    std::vector<StatusLine> lines(std::optional<std::string> message, RegistrationState state,
                                  std::int64_t modifiers = kCommand) {
        return statusLines({std::move(message), state, 37, modifiers}, layout);
    }

    platform::testing::ScriptedKeyboardLayout layout{{{37, "L"}}};
};

TEST_F(StatusLinesTest, NothingIsSaidOfWhatIsInactive) {
    EXPECT_THAT(lines(std::nullopt, RegistrationState::inactive), IsEmpty());
}

TEST_F(StatusLinesTest, TellsTheOutcomeOfTheRegistration) {
    EXPECT_THAT(lines(std::nullopt, RegistrationState::conflict), ElementsAre(kConflict));
    EXPECT_THAT(lines(std::nullopt, RegistrationState::failed), ElementsAre(kFailed));
    EXPECT_THAT(lines(std::nullopt, RegistrationState::active), ElementsAre(kActive));
}

TEST_F(StatusLinesTest, NamesTheKeysThatTheDesktopHasInPlaceOfTheStoredOnes) {
    EXPECT_THAT(
        statusLines({std::nullopt, RegistrationState::active, 37, kCommand, "Meta+K"}, layout),
        ElementsAre(StatusLine{"checkmark.circle.fill", Tint::green, "Shortcut active: Meta+K"}));
    EXPECT_THAT(
        statusLines({std::nullopt, RegistrationState::conflict, 37, kCommand, "Meta+K"}, layout),
        ElementsAre(kConflict));
}

TEST_F(StatusLinesTest, AnInvalidShortcutIsNotCalledActive) {
    EXPECT_THAT(lines(std::nullopt, RegistrationState::active, kOption), IsEmpty());
    EXPECT_THAT(statusLines({std::nullopt, RegistrationState::active, -1, kCommand}, layout),
                IsEmpty());
    EXPECT_THAT(layout.asked, IsEmpty());
}

TEST_F(StatusLinesTest, ConflictAndFailureAreToldOfAnyShortcut) {
    EXPECT_THAT(lines(std::nullopt, RegistrationState::conflict, kOption), ElementsAre(kConflict));
    EXPECT_THAT(lines(std::nullopt, RegistrationState::failed, 0), ElementsAre(kFailed));
}

TEST_F(StatusLinesTest, TheReasonOfARejectionStandsAbove) {
    EXPECT_THAT(lines("why", RegistrationState::conflict), ElementsAre(kRejected, kConflict));
    EXPECT_THAT(lines("why", RegistrationState::failed), ElementsAre(kRejected, kFailed));
    EXPECT_THAT(lines("why", RegistrationState::active), ElementsAre(kRejected, kActive));
    EXPECT_THAT(lines("why", RegistrationState::inactive), ElementsAre(kRejected));
    EXPECT_THAT(lines("why", RegistrationState::active, kOption), ElementsAre(kRejected));
}

TEST(ShortcutEditor, HasItsTextsAndItsWidth) {
    EXPECT_EQ(ShortcutEditor::kTitle, "Global Shortcut");
    EXPECT_EQ(ShortcutEditor::kCaption,
              "Shortcut must include Command. Examples: \u2318 + L, \u2318 + Shift + L, \u2318 + "
              "Option + L, or \u2318 + Control + L.");
    EXPECT_EQ(ShortcutEditor::kClear, "Clear");
    EXPECT_EQ(ShortcutEditor::kFieldWidth, 220);
}

}  // namespace
}  // namespace tarnwick
