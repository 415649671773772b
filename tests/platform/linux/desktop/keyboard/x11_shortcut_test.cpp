// SPDX-License-Identifier: MIT
// The user's shortcut on an X server, from the settings to the press.
#include <QDeadlineTimer>
#include <functional>
#include <gtest/gtest.h>
#include <poll.h>

#include "platform/linux/desktop/keyboard/x11_hot_keys.h"
#include "platform/qt/x11.h"
#include "platform/testing/manual_dispatch.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/scripted_login_service.h"
#include "settings/hot_key_service.h"
#include "settings/user_settings.h"
#include "tests/platform/linux/desktop/private_display.h"

namespace tarnwick {
namespace {

using platform::X11HotKeys;
using platform::testing::DisplayClient;
using platform::testing::ManualDispatch;
using platform::testing::MemoryUserDefaults;
using platform::testing::PrivateDisplay;
using platform::testing::ScriptedLoginService;

// As stored.
constexpr std::int64_t kL = 37;
constexpr std::int64_t kCommand = 0x100000;
constexpr std::int64_t kCommandShift = 0x120000;

// X11 key codes.
constexpr std::uint8_t kX11L = 46;
constexpr std::uint8_t kSuper = 133;
constexpr std::uint8_t kShift = 50;

class X11ShortcutTest : public testing::Test {
 protected:
    X11ShortcutTest() {
        settings.setShortcutKeyCode(kL);
        settings.setShortcutModifiers(kCommand);
    }

    RegistrationState apply() {
        service.applyShortcut(settings);
        return settings.shortcutRegistrationState();
    }
    bool waitForTriggers(int count) {
        const QDeadlineTimer deadline(30'000);
        while (triggers < count && !deadline.hasExpired()) {
            pollfd readable = {xcb_get_file_descriptor(own.connection()), POLLIN, 0};
            ::poll(&readable, 1, 20);
            while (
                const x11::Reply<xcb_generic_event_t> event{xcb_poll_for_event(own.connection())}) {
                hotKeys.handle(*event);
            }
            dispatch.runMain();
        }
        return triggers == count;
    }

    PrivateDisplay display;
    DisplayClient own{display.name()};
    DisplayClient other{display.name()};
    ManualDispatch dispatch;
    MemoryUserDefaults store;
    ScriptedLoginService loginService;
    UserSettings settings{store, loginService};
    X11HotKeys hotKeys{own.connection(), dispatch};
    int triggers = 0;
    HotKeyService service{[this] { ++triggers; }, {hotKeys, dispatch}};
};

TEST_F(X11ShortcutTest, IsActiveAndTriggersOnceAPress) {
    EXPECT_EQ(apply(), RegistrationState::active);
    for (int press = 1; press <= 3; ++press) {
        other.stroke({kSuper}, kX11L);
        EXPECT_TRUE(waitForTriggers(press));
    }
}

TEST_F(X11ShortcutTest, HeldByAnotherProgramIsAConflictUntilTheNextChange) {
    ASSERT_TRUE(other.grab(kX11L, XCB_MOD_MASK_4));
    EXPECT_EQ(apply(), RegistrationState::conflict);
    other.ungrab(kX11L, XCB_MOD_MASK_4);
    // The server reports to no client that a key has become free.
    dispatch.runMain();
    EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::conflict);

    settings.setShortcutModifiers(kCommandShift);
    EXPECT_EQ(apply(), RegistrationState::active);
    settings.setShortcutModifiers(kCommand);
    EXPECT_EQ(apply(), RegistrationState::active);
    other.stroke({kSuper}, kX11L);
    EXPECT_TRUE(waitForTriggers(1));
}

TEST_F(X11ShortcutTest, AnotherShortcutTakesThePlaceOfTheOneBefore) {
    EXPECT_EQ(apply(), RegistrationState::active);
    settings.setShortcutModifiers(kCommandShift);
    EXPECT_EQ(apply(), RegistrationState::active);
    own.sync();
    EXPECT_TRUE(other.grab(kX11L, XCB_MOD_MASK_4));
    other.stroke({kSuper, kShift}, kX11L);
    EXPECT_TRUE(waitForTriggers(1));
}

TEST_F(X11ShortcutTest, IsInactiveWhenCleared) {
    EXPECT_EQ(apply(), RegistrationState::active);
    settings.setShortcutKeyCode(-1);
    settings.setShortcutModifiers(0);
    EXPECT_EQ(apply(), RegistrationState::inactive);
    own.sync();
    EXPECT_TRUE(other.grab(kX11L, XCB_MOD_MASK_4));
}

TEST_F(X11ShortcutTest, OfAKeyThatTheKeyboardLacksHasFailed) {
    settings.setShortcutKeyCode(1000);
    EXPECT_EQ(apply(), RegistrationState::failed);
}

}  // namespace
}  // namespace tarnwick
