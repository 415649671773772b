// SPDX-License-Identifier: MIT
#include "settings/key_name.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include "platform/testing/scripted_keyboard_layout.h"

namespace tarnwick {
namespace {

using platform::testing::ScriptedKeyboardLayout;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::map<std::int64_t, std::string> kFixedNames = {
    {36, "↩"},   {48, "⇥"},  {49, "Space"}, {51, "⌫"},   {53, "⎋"},    {96, "F5"},   {97, "F6"},
    {98, "F7"},  {99, "F3"}, {100, "F8"},   {101, "F9"}, {103, "F11"}, {109, "F10"}, {111, "F12"},
    {115, "↖"},  {116, "⇞"}, {117, "⌦"},    {118, "F4"}, {119, "↘"},   {120, "F2"},  {121, "⇟"},
    {122, "F1"}, {123, "←"}, {124, "→"},    {125, "↓"},  {126, "↑"}};

TEST(KeyName, FixedNamesStandWhateverTheLayoutSays) {
    ScriptedKeyboardLayout layout;
    for (std::uint16_t code = 0; code < 200; ++code) {
        layout.texts[code] = "layout";
    }
    for (std::int64_t code = 0; code < 200; ++code) {
        const auto fixed = kFixedNames.find(code);
        EXPECT_EQ(keyName(code, layout), fixed == kFixedNames.end() ? "layout" : fixed->second)
            << code;
    }
}

TEST(KeyName, TheLayoutIsNotAskedForAFixedName) {
    ScriptedKeyboardLayout layout;
    keyName(36, layout);
    EXPECT_THAT(layout.asked, IsEmpty());
}

TEST(KeyName, FollowsTheLayout) {
    ScriptedKeyboardLayout latin({{0, "A"}, {41, ";"}});
    ScriptedKeyboardLayout other({{0, "Q"}, {41, "Ö"}});
    EXPECT_EQ(keyName(0, latin), "A");
    EXPECT_EQ(keyName(0, other), "Q");
    EXPECT_EQ(keyName(41, latin), ";");
    EXPECT_EQ(keyName(41, other), "Ö");
}

TEST(KeyName, TakesAllCharactersOfAKey) {
    ScriptedKeyboardLayout layout({{27, "SS"}});
    EXPECT_EQ(keyName(27, layout), "SS");
}

TEST(KeyName, AKeyThatProducesNothingIsNamedByItsCode) {
    ScriptedKeyboardLayout layout({{106, ""}});
    EXPECT_EQ(keyName(105, layout), "Key 105");
    EXPECT_EQ(keyName(106, layout), "Key 106");
    EXPECT_THAT(layout.asked, ElementsAre(105, 106));
}

TEST(KeyName, ACodeThatNoKeyboardHasIsNotLookedUp) {
    ScriptedKeyboardLayout layout({{0, "A"}, {65535, "last"}});
    EXPECT_EQ(keyName(65535, layout), "last");
    layout.asked.clear();
    EXPECT_EQ(keyName(65536, layout), "Key 65536");
    EXPECT_EQ(keyName(4294967332, layout), "Key 4294967332");
    EXPECT_EQ(keyName(-1, layout), "Key -1");
    EXPECT_THAT(layout.asked, IsEmpty());
}

TEST(KeyName, WithoutALayoutKeysAreNamedByTheirCodes) {
    platform::NullKeyboardLayout layout;
    EXPECT_EQ(keyName(37, layout), "Key 37");
    EXPECT_EQ(keyName(49, layout), "Space");
}

}  // namespace
}  // namespace tarnwick
