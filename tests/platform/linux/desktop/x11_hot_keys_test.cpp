#include "platform/linux/desktop/x11_hot_keys.h"

#include <QDeadlineTimer>
#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/desktop/x11_reply.h"
#include "platform/testing/manual_dispatch.h"
#include "tests/platform/linux/desktop/private_display.h"

namespace tarnwick::platform {
namespace {

using testing::DisplayClient;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::ManualDispatch;
using testing::PrivateDisplay;

namespace key = hot_key_modifier;
namespace status = hot_key_status;

constexpr std::uint32_t kSignature = 0x54524E57;
constexpr std::uint32_t kCommandL = 1;
constexpr std::uint32_t kOther = 2;

// Virtual key codes.
constexpr std::uint32_t kL = 37;
constexpr std::uint32_t kF19 = 80;

// X11 key codes.
constexpr std::uint8_t kX11L = 46;
constexpr std::uint8_t kX11M = 58;
constexpr std::uint8_t kX11F19 = 197;
constexpr std::uint8_t kSuper = 133;
constexpr std::uint8_t kRightSuper = 134;
constexpr std::uint8_t kShift = 50;
constexpr std::uint8_t kControl = 37;
constexpr std::uint8_t kAlt = 64;
constexpr std::uint8_t kScrollLock = 78;
/// Keys of the usual keymap that no keyboard has and that mean Super.
constexpr std::uint8_t kVirtualSuper = 206;

constexpr int kMod3 = 5;
constexpr int kMod4 = 6;
const std::vector<std::uint16_t> kLocks = {0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2,
                                           XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2};

class X11HotKeysTest : public ::testing::Test {
 protected:
    explicit X11HotKeysTest(int screens = 1, const QStringList& options = {})
        : display(screens, options), own(display.name()), other(display.name()) {
        hotKeys = std::make_unique<X11HotKeys>(own.connection(), dispatch);
        hotKeys->setRegistrationChanged([this] { ++changes; });
        auto result = hotKeys->installEventHandler([this](const HotKeyEvent* event) {
            HotKeyID id;
            EXPECT_EQ(event->hotKeyID(id), status::kSuccess);
            EXPECT_EQ(id.signature, kSignature);
            presses.push_back(id.id);
            return status::kSuccess;
        });
        EXPECT_EQ(result.status, status::kSuccess);
        handler = std::move(result.handle);
    }

    HotKeys::RegistrationResult add(std::uint32_t keyCode, std::uint32_t modifiers,
                                    std::uint32_t id = kCommandL) {
        return hotKeys->registerEventHotKey(keyCode, modifiers, {kSignature, id});
    }

    /// Hands over every event that has come.
    void takeEvents() {
        while (const X11Reply<xcb_generic_event_t> event{xcb_poll_for_event(own.connection())}) {
            if (event->response_type == XCB_KEY_PRESS) {
                ++keyPresses;
            }
            usedUp += hotKeys->handle(*event) ? 1 : 0;
        }
    }
    bool takeEventsUntil(const std::function<bool()>& condition) {
        const QDeadlineTimer deadline(30'000);
        while (!condition()) {
            if (deadline.hasExpired()) {
                return false;
            }
            pollfd readable = {xcb_get_file_descriptor(own.connection()), POLLIN, 0};
            ::poll(&readable, 1, 20);
            takeEvents();
        }
        return true;
    }
    /// Presses a shortcut of its own after all else: when it arrives, everything before has, too.
    void settle() {
        const auto before = std::count(presses.begin(), presses.end(), kOther);
        const auto last = add(kF19, 0, kOther);
        ASSERT_TRUE(last.handle);
        other.stroke({}, kX11F19);
        ASSERT_TRUE(takeEventsUntil(
            [&] { return std::count(presses.begin(), presses.end(), kOther) > before; }));
        std::erase(presses, kOther);
    }
    /// The presses that a stroke brings.
    std::vector<std::uint32_t> pressesOf(const std::vector<std::uint8_t>& held,
                                         std::uint8_t stroked) {
        presses.clear();
        other.stroke(held, stroked);
        settle();
        return presses;
    }
    /// Nobody holds the key with these modifiers, on any screen and with any of the locks.
    bool isFree(std::uint16_t modifiers) {
        // What was given back is on its way.
        own.sync();
        return other.couldGrab(kX11L, modifiers, kLocks);
    }
    /// Lets the program see what the keyboard has become.
    void takeKeyboardChange() {
        EXPECT_TRUE(takeEventsUntil([this] { return dispatch.mainPending() > 0; }));
        dispatch.runMain();
    }

    PrivateDisplay display;
    DisplayClient own;
    DisplayClient other;
    ManualDispatch dispatch;
    std::unique_ptr<X11HotKeys> hotKeys;
    std::unique_ptr<HotKeyHandle> handler;
    std::vector<std::uint32_t> presses;
    /// Events of keys that came to this connection.
    int keyPresses = 0;
    /// Events that the toolkit would not see.
    int usedUp = 0;
    int changes = 0;
};

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

TEST_F(X11HotKeysTest, ALockThatComesLaterDoesNotMatterEither) {
    const auto result = add(kL, key::kCommand);
    other.setModifierOf(kScrollLock, kMod3);
    takeKeyboardChange();
    other.setLocks(XCB_MOD_MASK_3);
    EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL));
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

TEST_F(X11HotKeysTest, ASecondTimeInThisProgramExists) {
    auto first = add(kL, key::kCommand);
    EXPECT_EQ(add(kL, key::kCommand, kOther).status, status::kExists);
    EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL));
    first.handle.reset();
    EXPECT_EQ(add(kL, key::kCommand).status, status::kSuccess);
}

TEST_F(X11HotKeysTest, HandlesTellThemselvesApart) {
    const auto first = add(kL, key::kCommand);
    const auto second = add(kL, key::kCommand | key::kShift);
    EXPECT_NE(first.handle->description(), second.handle->description());
}

TEST_F(X11HotKeysTest, AKeyThatNoKeyboardHasIsInvalid) {
    constexpr std::uint32_t kFn = 63;
    for (const std::uint32_t code : {kFn, 200U, 0xFFFF'FFFFU}) {
        const auto result = add(code, key::kCommand);
        EXPECT_EQ(result.status, X11HotKeys::kInvalid) << code;
        EXPECT_FALSE(result.handle) << code;
    }
}

TEST_F(X11HotKeysTest, HandlersAreAskedFromTheNewestOn) {
    std::vector<std::string> asked;
    std::int32_t answer = status::kEventNotHandled;
    auto newest = hotKeys->installEventHandler([&](const HotKeyEvent*) {
        asked.push_back("newest");
        return answer;
    });
    const auto result = add(kL, key::kCommand);
    xcb_key_press_event_t event{};
    event.response_type = XCB_KEY_PRESS;
    event.detail = kX11L;
    event.state = XCB_MOD_MASK_4;
    event.time = 1000;
    const auto press = [&] {
        ++event.time;
        hotKeys->handle(reinterpret_cast<const xcb_generic_event_t&>(event));
    };
    press();
    EXPECT_THAT(asked, ElementsAre("newest"));
    EXPECT_THAT(presses, ElementsAre(kCommandL));
    answer = status::kSuccess;
    press();
    EXPECT_EQ(asked.size(), 2U);
    EXPECT_EQ(presses.size(), 1U);
    newest.handle.reset();
    press();
    EXPECT_EQ(asked.size(), 2U);
    EXPECT_EQ(presses.size(), 2U);
    handler.reset();
    press();
    EXPECT_EQ(presses.size(), 2U);
}

TEST_F(X11HotKeysTest, AServerThatIsGoneGrantsNothing) {
    display.end();
    const auto result = add(kL, key::kCommand);
    EXPECT_NE(result.status, status::kSuccess);
    EXPECT_NE(result.status, status::kExists);
    EXPECT_FALSE(result.handle);
}

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

/// With the keyboard's Super keys on a modifier of the test's choice.
class MovedModifierTest : public X11HotKeysTest {
 protected:
    void moveSuper(int modifier) {
        for (const std::uint8_t each : {kSuper, kRightSuper, kVirtualSuper}) {
            other.setModifierOf(each, modifier);
        }
        takeKeyboardChange();
    }
};

TEST_F(MovedModifierTest, TheGrabFollowsTheModifier) {
    const auto result = add(kL, key::kCommand);
    moveSuper(kMod3);
    EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL));
    EXPECT_TRUE(isFree(XCB_MOD_MASK_4));
    EXPECT_FALSE(other.grab(kX11L, XCB_MOD_MASK_3));
    EXPECT_EQ(changes, 0);
}

TEST_F(MovedModifierTest, ARegistrationSeesAMoveWhoseEventIsStillOnTheWay) {
    for (const std::uint8_t each : {kSuper, kRightSuper, kVirtualSuper}) {
        other.setModifierOf(each, kMod3);
    }
    const auto result = add(kL, key::kCommand);
    EXPECT_FALSE(other.grab(kX11L, XCB_MOD_MASK_3));
    EXPECT_TRUE(other.grab(kX11L, XCB_MOD_MASK_4));
}

TEST_F(MovedModifierTest, AMoveOntoWhatAnotherProgramHoldsIsToldOnce) {
    ASSERT_TRUE(other.grab(kX11L, XCB_MOD_MASK_3));
    auto result = add(kL, key::kCommand);
    ASSERT_TRUE(result.handle);
    moveSuper(kMod3);
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(isFree(XCB_MOD_MASK_4));
    result.handle.reset();
    result = add(kL, key::kCommand);
    EXPECT_EQ(result.status, status::kExists);

    moveSuper(kMod4);
    EXPECT_EQ(changes, 2);
    EXPECT_TRUE(isFree(XCB_MOD_MASK_4));
    result = add(kL, key::kCommand);
    EXPECT_EQ(result.status, status::kSuccess);
    EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL));
}

TEST_F(MovedModifierTest, AKeyboardWithoutTheModifierIsToldAndHasNoShortcut) {
    auto result = add(kL, key::kCommand);
    moveSuper(-1);
    EXPECT_EQ(changes, 1);
    result.handle.reset();
    result = add(kL, key::kCommand);
    EXPECT_EQ(result.status, X11HotKeys::kInvalid);

    moveSuper(kMod4);
    EXPECT_EQ(changes, 2);
    result = add(kL, key::kCommand);
    EXPECT_EQ(result.status, status::kSuccess);
    EXPECT_EQ(changes, 2);
}

TEST_F(MovedModifierTest, ALostGrabComesBackByItself) {
    const auto result = add(kL, key::kCommand);
    moveSuper(-1);
    moveSuper(kMod4);
    EXPECT_EQ(changes, 2);
    EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL));
}

TEST_F(MovedModifierTest, ALossThatIsMadeGoodAtOnceIsNotTold) {
    const auto result = add(kL, key::kCommand);
    for (const int modifier : {-1, kMod4}) {
        for (const std::uint8_t each : {kSuper, kRightSuper, kVirtualSuper}) {
            other.setModifierOf(each, modifier);
        }
        // Sees the keyboard as it is now; what follows from it waits.
        const auto probe = add(kF19, 0, kOther);
    }
    takeEvents();
    dispatch.runMain();
    EXPECT_EQ(changes, 0);
    EXPECT_THAT(pressesOf({kSuper}, kX11L), ElementsAre(kCommandL));
}

TEST_F(MovedModifierTest, WhatIsUnregisteredIsNotTold) {
    auto result = add(kL, key::kCommand);
    result.handle.reset();
    moveSuper(-1);
    EXPECT_EQ(changes, 0);
}

TEST_F(MovedModifierTest, ChangesAreNotToldFromWithinAnOperation) {
    auto result = add(kL, key::kCommand);
    for (const std::uint8_t each : {kSuper, kRightSuper, kVirtualSuper}) {
        other.setModifierOf(each, -1);
    }
    ASSERT_TRUE(takeEventsUntil([this] { return dispatch.mainPending() > 0; }));
    EXPECT_EQ(changes, 0);
    dispatch.runMainTurn();
    EXPECT_EQ(changes, 0);
    dispatch.runMain();
    EXPECT_EQ(changes, 1);
}

TEST_F(MovedModifierTest, TheEndLeavesWaitingWorkNothingToDo) {
    auto result = add(kL, key::kCommand);
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

}  // namespace
}  // namespace tarnwick::platform
