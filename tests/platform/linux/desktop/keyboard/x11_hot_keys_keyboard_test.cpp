// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/linux/desktop/keyboard/x11_hot_keys.h"
#include "tests/platform/linux/desktop/keyboard/x11_hot_keys_fixture.h"

namespace tarnwick::platform {
namespace {

using namespace testing;
using ::testing::ElementsAre;

namespace key = hot_key_modifier;
namespace status = hot_key_status;

TEST_F(X11HotKeysTest, AnotherLayoutTakesNothingAway) {
    const auto result = add(kL, key::kCommand);
    display.setLayouts("de");
    takeKeyboardChange();
    EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL));
    display.setLayouts("us,ru");
    takeKeyboardChange();
    other.setLayout(1);
    EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL));
    other.setLayout(0);
    EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL));
    EXPECT_EQ(changes, 0);
}

TEST_F(X11HotKeysTest, AKeyThatMeansAnotherLetterIsStillTheSameKey) {
    display.setLayouts("us(dvorak)");
    takeKeyboardChange();
    const auto result = add(kL, key::kCommand);
    EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL));
}

TEST_F(X11HotKeysTest, ABurstOfChangesIsLookedAtOnce) {
    xcb_mapping_notify_event_t event{};
    event.response_type = XCB_MAPPING_NOTIFY;
    event.request = XCB_MAPPING_POINTER;
    EXPECT_FALSE(hotKeys->handle(reinterpret_cast<const xcb_generic_event_t&>(event)));
    EXPECT_EQ(dispatch.mainPending(), 0U);
    for (const std::uint8_t request : {XCB_MAPPING_MODIFIER, XCB_MAPPING_KEYBOARD}) {
        event.request = request;
        EXPECT_FALSE(hotKeys->handle(reinterpret_cast<const xcb_generic_event_t&>(event)));
        EXPECT_EQ(dispatch.mainPending(), 1U);
    }
    dispatch.runMain();
    hotKeys->handle(reinterpret_cast<const xcb_generic_event_t&>(event));
    EXPECT_EQ(dispatch.mainPending(), 1U);
}

/// With the keyboard's Super keys on a modifier of the test's choice, and a program that registers
/// again when it is told to.
class MovedModifierTest : public X11HotKeysTest {
 protected:
    MovedModifierTest() {
        hotKeys->setRegistrationChanged([this] {
            ++changes;
            hold();
        });
    }
    std::int32_t hold() {
        result.handle.reset();
        result = add(kL, key::kCommand);
        return result.status;
    }
    void giveSuperTo(int modifier) {
        for (const std::uint8_t each : {kSuper, kRightSuper, kVirtualSuper}) {
            other.setModifierOf(each, modifier);
        }
    }
    void moveSuper(int modifier) {
        giveSuperTo(modifier);
        takeKeyboardChange();
    }

    HotKeys::RegistrationResult result;
};

TEST_F(MovedModifierTest, TheGrabFollowsTheModifier) {
    hold();
    moveSuper(kMod3);
    EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL));
    EXPECT_TRUE(isFree(XCB_MOD_MASK_4));
    EXPECT_FALSE(other.grab(kX11L, XCB_MOD_MASK_3));
    EXPECT_EQ(changes, 1);
}

TEST_F(MovedModifierTest, ARegistrationSeesAMoveWhoseEventIsStillOnTheWay) {
    giveSuperTo(kMod3);
    hold();
    EXPECT_FALSE(other.grab(kX11L, XCB_MOD_MASK_3));
    EXPECT_TRUE(other.grab(kX11L, XCB_MOD_MASK_4));
    takeKeyboardChange();
    EXPECT_EQ(changes, 0);
}

TEST_F(MovedModifierTest, AMoveOntoWhatAnotherProgramHoldsIsAConflictUntilItMovesBack) {
    ASSERT_TRUE(other.grab(kX11L, XCB_MOD_MASK_3));
    ASSERT_EQ(hold(), status::kSuccess);
    moveSuper(kMod3);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(result.status, status::kExists);
    EXPECT_TRUE(isFree(XCB_MOD_MASK_4));

    moveSuper(kMod4);
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(result.status, status::kSuccess);
    EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL));
}

TEST_F(MovedModifierTest, ALockThatComesLaterDoesNotMatterEither) {
    hold();
    other.setModifierOf(kScrollLock, kMod3);
    takeKeyboardChange();
    other.setLocks(XCB_MOD_MASK_3);
    EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL));
}

TEST_F(MovedModifierTest, AKeyboardWithoutTheModifierHasNoShortcutUntilItHasOne) {
    hold();
    moveSuper(-1);
    EXPECT_EQ(result.status, X11HotKeys::kInvalid);
    moveSuper(kMod4);
    EXPECT_EQ(result.status, status::kSuccess);
    EXPECT_EQ(changes, 2);
}

TEST_F(MovedModifierTest, WhatIsUnregisteredOrWithdrawnIsNotTold) {
    hold();
    result.handle.reset();
    moveSuper(-1);
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(hold(), X11HotKeys::kInvalid);
    hotKeys->withdrawRegistration();
    moveSuper(kMod4);
    EXPECT_EQ(changes, 0);
}

TEST_F(MovedModifierTest, WhatIsHeldCannotBeWithdrawn) {
    hold();
    hotKeys->withdrawRegistration();
    EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL));
    moveSuper(kMod3);
    EXPECT_EQ(changes, 1);
}

TEST_F(MovedModifierTest, TheEndLeavesWaitingWorkNothingToDo) {
    hold();
    other.setModifierOf(kSuper, -1);
    ASSERT_TRUE(takeEventsUntil([this] { return dispatch.mainPending() > 0; }));
    result.handle.reset();
    handler.reset();
    hotKeys.reset();
    dispatch.runMain();
    EXPECT_EQ(changes, 0);
}

class RepeatingKeyTest : public X11HotKeysTest {
 protected:
    RepeatingKeyTest() : X11HotKeysTest(1, {"-ardelay", "50", "-arinterval", "20"}) {}
};

TEST_F(RepeatingKeyTest, AKeyThatIsHeldIsPressedOnce) {
    const auto result = add(kL, key::kCommand);
    other.pressKey(kSuper);
    other.pressKey(kX11L);
    ASSERT_TRUE(takeEventsUntil([this] { return keyPresses >= 5; }));
    EXPECT_THAT(presses, ElementsAre(kCommandL));
    EXPECT_EQ(usedUp, keyPresses);
    other.releaseKey(kX11L);
    other.pressKey(kX11L);
    EXPECT_TRUE(takeEventsUntil([this] { return presses.size() > 1; }));
    other.releaseKey(kX11L);
    other.releaseKey(kSuper);
    settle();
    EXPECT_THAT(presses, ElementsAre(kCommandL, kCommandL));
}

}  // namespace
}  // namespace tarnwick::platform
