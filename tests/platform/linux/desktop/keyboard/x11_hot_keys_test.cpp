// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/x11_hot_keys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "tests/platform/linux/desktop/keyboard/x11_hot_keys_fixture.h"

namespace tarnwick::platform {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace key = hot_key_modifier;
namespace status = hot_key_status;

TEST_F(X11HotKeysTest, APressIsReportedWhoeverHasTheFocus) {
    const auto result = add(kL, key::kCommand);
    EXPECT_EQ(result.status, status::kSuccess);
    ASSERT_TRUE(result.handle);
    other.stroke({kSuper}, kX11L);
    EXPECT_TRUE(takeEventsUntil([this] { return !presses.empty(); }));
    EXPECT_THAT(presses, ElementsAre(kCommandL));
    EXPECT_EQ(usedUp, 1);
}

TEST_F(X11HotKeysTest, EitherSuperIsCommand) {
    const auto result = add(kL, key::kCommand);
    EXPECT_THAT(pressesOf({kRightSuper}, kX11L), ElementsAre(kCommandL));
}

TEST_F(X11HotKeysTest, TheModifiersAreThoseAskedFor) {
    const std::vector<std::pair<std::uint32_t, std::uint8_t>> extras = {
        {key::kShift, kShift}, {key::kControl, kControl}, {key::kOption, kAlt}};
    for (const auto& [flag, extraKey] : extras) {
        const auto result = add(kL, key::kCommand | flag);
        ASSERT_TRUE(result.handle) << flag;
        EXPECT_THAT(pressesOf({kSuper, extraKey}, kX11L), ElementsAre(kCommandL)) << flag;
        EXPECT_THAT(pressesOf({kSuper}, kX11L), IsEmpty()) << flag;
        EXPECT_THAT(pressesOf({extraKey}, kX11L), IsEmpty()) << flag;
    }
}

TEST_F(X11HotKeysTest, OtherKeysAndOtherModifiersAreNotTaken) {
    const auto result = add(kL, key::kCommand);
    ASSERT_TRUE(result.handle);
    EXPECT_THAT(pressesOf({}, kX11L), IsEmpty());
    EXPECT_THAT(pressesOf({kControl}, kX11L), IsEmpty());
    EXPECT_THAT(pressesOf({kSuper, kShift}, kX11L), IsEmpty());
    EXPECT_THAT(pressesOf({kSuper}, kX11M), IsEmpty());
    EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL));
}

TEST_F(X11HotKeysTest, AnotherKeyOfThisProgramIsLeftToTheToolkit) {
    const auto result = add(kL, key::kCommand);
    xcb_key_press_event_t event{};
    event.response_type = XCB_KEY_PRESS;
    event.detail = kX11M;
    event.state = XCB_MOD_MASK_4;
    EXPECT_FALSE(hotKeys->handle(reinterpret_cast<const xcb_generic_event_t&>(event)));
    // In a window of this program, while the program itself holds the keyboard.
    event.detail = kX11L;
    event.time = 1000;
    EXPECT_TRUE(hotKeys->handle(reinterpret_cast<const xcb_generic_event_t&>(event)));
    EXPECT_THAT(presses, ElementsAre(kCommandL));
}

TEST_F(X11HotKeysTest, AnEventThatAProgramMadeUpIsNoPress) {
    const auto result = add(kL, key::kCommand);
    xcb_key_press_event_t event{};
    event.response_type = XCB_KEY_PRESS | 0x80;
    event.detail = kX11L;
    event.state = XCB_MOD_MASK_4;
    event.time = 1000;
    EXPECT_FALSE(hotKeys->handle(reinterpret_cast<const xcb_generic_event_t&>(event)));
    EXPECT_THAT(presses, IsEmpty());
}

TEST_F(X11HotKeysTest, LocksDoNotMatter) {
    other.setModifierOf(kScrollLock, kMod3);
    takeKeyboardChange();
    const auto result = add(kL, key::kCommand);
    ASSERT_TRUE(result.handle);
    const std::vector<std::uint8_t> each = {XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2, XCB_MOD_MASK_3};
    for (std::uint32_t subset = 0; subset < 8; ++subset) {
        std::uint8_t locks = 0;
        for (std::size_t i = 0; i < each.size(); ++i) {
            locks = (subset >> i & 1) != 0 ? static_cast<std::uint8_t>(locks | each[i]) : locks;
        }
        other.setLocks(locks);
        EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL)) << int{locks};
    }
}

TEST_F(X11HotKeysTest, ACombinationThatAnotherProgramHoldsExists) {
    ASSERT_TRUE(other.grab(kX11L, XCB_MOD_MASK_4));
    const auto result = add(kL, key::kCommand);
    EXPECT_EQ(result.status, status::kExists);
    EXPECT_FALSE(result.handle);
    other.ungrab(kX11L, XCB_MOD_MASK_4);
    EXPECT_TRUE(isFree(XCB_MOD_MASK_4));
}

TEST_F(X11HotKeysTest, NothingStaysGrabbedWhenAPartIsHeldByAnother) {
    for (const std::uint16_t locks : kLocks) {
        const auto held = static_cast<std::uint16_t>(XCB_MOD_MASK_4 | locks);
        ASSERT_TRUE(other.grab(kX11L, held));
        EXPECT_EQ(add(kL, key::kCommand).status, status::kExists) << locks;
        other.ungrab(kX11L, held);
        EXPECT_TRUE(isFree(XCB_MOD_MASK_4)) << locks;
    }
}

TEST_F(X11HotKeysTest, ACombinationThatIsHeldByTheInputExtensionExists) {
    const xcb_window_t root = other.roots().front();
    DisplayClient third(display.name());
    for (const std::uint16_t locks : kLocks) {
        const auto held = static_cast<std::uint16_t>(XCB_MOD_MASK_4 | locks);
        ASSERT_TRUE(other.grabByExtension(kX11L, held, root));
        const auto refused = add(kL, key::kCommand);
        EXPECT_EQ(refused.status, status::kExists) << locks;
        EXPECT_FALSE(refused.handle) << locks;
        EXPECT_TRUE(isFree(XCB_MOD_MASK_4)) << locks;
        EXPECT_FALSE(third.grabByExtension(kX11L, held, root)) << "its holder has lost it";
        other.ungrabByExtension(kX11L, held, root);
    }
    const auto result = add(kL, key::kCommand);
    EXPECT_EQ(result.status, status::kSuccess);
    EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL));
}

TEST_F(X11HotKeysTest, WhatTheInputExtensionIsAskedForIsLeftToOthers) {
    const auto result = add(kL, key::kCommand);
    ASSERT_TRUE(result.handle);
    // What was given back is on its way.
    own.sync();
    const xcb_window_t root = other.roots().front();
    EXPECT_TRUE(other.grabByExtension(kX11L, XCB_MOD_MASK_4, root));
    other.ungrabByExtension(kX11L, XCB_MOD_MASK_4, root);
    EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL));
}

TEST_F(X11HotKeysTest, OtherCombinationsOfTheInputExtensionAreNotInTheWay) {
    const xcb_window_t root = other.roots().front();
    ASSERT_TRUE(other.grabByExtension(kX11L, XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT, root));
    ASSERT_TRUE(other.grabByExtension(kX11M, XCB_MOD_MASK_4, root));
    const auto result = add(kL, key::kCommand);
    EXPECT_EQ(result.status, status::kSuccess);
    EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL));
}

TEST_F(X11HotKeysTest, AKeyWithSuperAloneExistsWhereAnotherProgramWaitsForSuper) {
    const xcb_window_t root = other.roots().front();
    ASSERT_TRUE(other.grabByExtension(kSuper, 0, root));
    const auto refused = add(kL, key::kCommand);
    EXPECT_EQ(refused.status, status::kExists);
    EXPECT_FALSE(refused.handle);
    EXPECT_TRUE(isFree(XCB_MOD_MASK_4));
    const auto result = add(kL, key::kCommand | key::kShift);
    EXPECT_EQ(result.status, status::kSuccess);
    EXPECT_THAT(pressesOf({kShift, kSuper}, kX11L), SizeIs(1));
    other.ungrabByExtension(kSuper, 0, root);
    EXPECT_EQ(add(kL, key::kCommand).status, status::kSuccess);
}

TEST_F(X11HotKeysTest, WhatTheOtherProgramLetsGoCanBeRegistered) {
    ASSERT_TRUE(other.grab(kX11L, XCB_MOD_MASK_4));
    EXPECT_EQ(add(kL, key::kCommand).status, status::kExists);
    other.ungrab(kX11L, XCB_MOD_MASK_4);
    const auto result = add(kL, key::kCommand);
    EXPECT_EQ(result.status, status::kSuccess);
    EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL));
}

TEST_F(X11HotKeysTest, ARegisteredCombinationIsHeldWithAllLocks) {
    const auto result = add(kL, key::kCommand);
    for (const std::uint16_t locks : kLocks) {
        EXPECT_FALSE(other.grab(kX11L, static_cast<std::uint16_t>(XCB_MOD_MASK_4 | locks)))
            << locks;
    }
}

TEST_F(X11HotKeysTest, ItsEndGivesTheCombinationBack) {
    auto result = add(kL, key::kCommand);
    result.handle.reset();
    EXPECT_TRUE(isFree(XCB_MOD_MASK_4));
    EXPECT_THAT(pressesOf({kSuper}, kX11L), IsEmpty());
}

TEST_F(X11HotKeysTest, AnotherRegistrationTakesThePlaceOfTheOneBefore) {
    auto first = add(kL, key::kCommand);
    auto second = add(kL, key::kCommand | key::kShift);
    EXPECT_NE(first.handle->description(), second.handle->description());
    EXPECT_THAT(pressesOf({kSuper}, kX11L), IsEmpty());
    first.handle.reset();
    EXPECT_THAT(pressesOf({kSuper, kShift}, kX11L), ElementsAre(kCommandL));
    EXPECT_EQ(add(200, key::kCommand).status, X11HotKeys::kInvalid);
    second.handle.reset();
    EXPECT_TRUE(isFree(XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT));
}

TEST_F(X11HotKeysTest, AKeyThatNoKeyboardHasIsInvalid) {
    constexpr std::uint32_t kFn = 63;
    for (const std::uint32_t code : {kFn, 200U, 0xFFFF'FFFFU}) {
        const auto result = add(code, key::kCommand);
        EXPECT_EQ(result.status, X11HotKeys::kInvalid) << code;
        EXPECT_FALSE(result.handle) << code;
    }
}

TEST_F(X11HotKeysTest, APressWithoutAHandlerIsUsedUpAllTheSame) {
    const auto result = add(kL, key::kCommand);
    handler.reset();
    EXPECT_THAT(pressesOf({kSuper}, kX11L), IsEmpty());
    EXPECT_EQ(usedUp, 1);
}

TEST_F(X11HotKeysTest, AServerThatIsGoneGrantsNothing) {
    display.end();
    const auto result = add(kL, key::kCommand);
    EXPECT_NE(result.status, status::kSuccess);
    EXPECT_NE(result.status, status::kExists);
    EXPECT_FALSE(result.handle);
}

class TwoScreensTest : public X11HotKeysTest {
 protected:
    TwoScreensTest() : X11HotKeysTest(2) {}
};

TEST_F(TwoScreensTest, TheCombinationIsHeldOnBoth) {
    ASSERT_EQ(other.roots().size(), 2U);
    auto result = add(kL, key::kCommand);
    EXPECT_FALSE(other.grab(kX11L, XCB_MOD_MASK_4, other.roots()[0]));
    EXPECT_FALSE(other.grab(kX11L, XCB_MOD_MASK_4, other.roots()[1]));
    result.handle.reset();
    EXPECT_TRUE(isFree(XCB_MOD_MASK_4));
}

TEST_F(TwoScreensTest, NothingStaysGrabbedWhenAnotherHoldsItOnOne) {
    for (const xcb_window_t root : other.roots()) {
        ASSERT_TRUE(other.grab(kX11L, XCB_MOD_MASK_4, root));
        EXPECT_EQ(add(kL, key::kCommand).status, status::kExists);
        other.ungrab(kX11L, XCB_MOD_MASK_4, root);
        EXPECT_TRUE(isFree(XCB_MOD_MASK_4));
    }
}

TEST_F(TwoScreensTest, TheInputExtensionIsAskedAboutBoth) {
    for (const xcb_window_t root : other.roots()) {
        // What was given back is on its way.
        own.sync();
        ASSERT_TRUE(other.grabByExtension(kX11L, XCB_MOD_MASK_4, root));
        EXPECT_EQ(add(kL, key::kCommand).status, status::kExists);
        other.ungrabByExtension(kX11L, XCB_MOD_MASK_4, root);
    }
    EXPECT_EQ(add(kL, key::kCommand).status, status::kSuccess);
}

}  // namespace
}  // namespace tarnwick::platform
