// SPDX-License-Identifier: MIT
#include "settings/shortcut_recorder_view.h"

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

class ShortcutRecorderViewTest : public ::testing::Test {
 protected:
    Binding<std::int64_t> bind(std::int64_t& value, const std::string& name) {
        return {[&value] { return value; },
                [this, &value, name](std::int64_t next) {
                    value = next;
                    writes.push_back(name);
                }};
    }

    ScriptedKeyboardLayout layout{{{37, "L"}, {40, "K"}}};
    std::int64_t keyCode = 37;
    std::int64_t modifiers = kCommand;
    std::optional<std::string> message = "old";
    std::vector<std::string> writes;
    ShortcutRecorderView view{
        layout, bind(keyCode, "key code"), bind(modifiers, "modifiers"),
        Binding<std::optional<std::string>>{
            [this] { return message; },
            [this](std::optional<std::string> next) { message = std::move(next); }}};
};

TEST_F(ShortcutRecorderViewTest, ShowsWhatIsBound) {
    view.update();
    EXPECT_EQ(view.field().text().text, "⌘L");
    keyCode = 40;
    EXPECT_EQ(view.field().text().text, "⌘L");
    view.update();
    EXPECT_EQ(view.field().text().text, "⌘K");
    EXPECT_THAT(writes, IsEmpty());
}

TEST_F(ShortcutRecorderViewTest, WritesWhatIsRecorded) {
    view.update();
    view.field().mouseDown();
    view.field().keyDown(40, kCommand | 0x20000);
    EXPECT_EQ(keyCode, 40);
    EXPECT_EQ(modifiers, kCommand | 0x20000);
    EXPECT_THAT(writes, ElementsAre("key code", "modifiers"));
}

TEST_F(ShortcutRecorderViewTest, WritesWhatIsCleared) {
    view.update();
    view.field().mouseDown();
    view.field().keyDown(51, 0);
    EXPECT_EQ(keyCode, -1);
    EXPECT_EQ(modifiers, 0);
}

TEST_F(ShortcutRecorderViewTest, WritesTheMessage) {
    view.field().mouseDown();
    EXPECT_EQ(message, std::nullopt);
    view.field().flagsChanged(0x80000);
    EXPECT_EQ(message, "Shortcut must include Command.");
    EXPECT_EQ(view.validationMessage().get(), message);
    view.field().keyDown(53, 0);
    EXPECT_EQ(message, std::nullopt);
    EXPECT_THAT(writes, IsEmpty());
}

}  // namespace
}  // namespace tarnwick
