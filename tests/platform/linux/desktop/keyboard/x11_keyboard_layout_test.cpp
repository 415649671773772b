// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/x11_keyboard_layout.h"

#include <gtest/gtest.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include "tests/platform/linux/desktop/keyboard/virtual_keys.h"
#include "tests/platform/linux/desktop/private_display.h"

namespace tarnwick::platform {
namespace {

using testing::DisplayClient;
using testing::PrivateDisplay;

class X11KeyboardLayoutTest : public ::testing::Test {
 protected:
    PrivateDisplay display;
    DisplayClient client{display.name()};
    X11KeyboardLayout layout{client.connection()};
};

TEST_F(X11KeyboardLayoutTest, NamesKeysInTheServersLayout) {
    EXPECT_EQ(layout.displayText(kY), "Y");
    EXPECT_EQ(layout.displayText(kF13), std::nullopt);
}

TEST_F(X11KeyboardLayoutTest, KnowsWhatKeysProduce) {
    constexpr std::uint16_t kMinus = 27;
    EXPECT_EQ(layout.keysym(kY), xkb_keysym_t{XKB_KEY_y});
    display.setLayouts("de");
    EXPECT_EQ(layout.keysym(kMinus), xkb_keysym_t{XKB_KEY_ssharp});
    EXPECT_EQ(layout.keysym(200), xkb_keysym_t{XKB_KEY_NoSymbol});
}

TEST_F(X11KeyboardLayoutTest, FollowsAnotherLayout) {
    display.setLayouts("de");
    EXPECT_EQ(layout.displayText(kY), "Z");
    display.setLayouts("fr");
    EXPECT_EQ(layout.displayText(12), "A");
    display.setLayouts("us");
    EXPECT_EQ(layout.displayText(kY), "Y");
}

TEST_F(X11KeyboardLayoutTest, FollowsTheLayoutInUse) {
    display.setLayouts("us,ru");
    EXPECT_EQ(layout.displayText(kL), "L");
    client.setLayout(1);
    EXPECT_EQ(layout.displayText(kL), "Д");
    client.setLayout(0);
    EXPECT_EQ(layout.displayText(kL), "L");
}

TEST_F(X11KeyboardLayoutTest, DoesNotFollowTheModifiers) {
    client.setLocks(XCB_MOD_MASK_LOCK | XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL);
    EXPECT_EQ(layout.displayText(27), "-");
}

TEST_F(X11KeyboardLayoutTest, KnowsNothingOfAServerThatIsGone) {
    display.end();
    EXPECT_EQ(layout.displayText(kL), std::nullopt);
}

}  // namespace
}  // namespace tarnwick::platform
