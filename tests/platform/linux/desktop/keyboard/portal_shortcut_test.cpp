// SPDX-License-Identifier: MIT
// The user's shortcut on a desktop with a portal, from the settings to the press.
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/linux/desktop/keyboard/portal_hot_keys.h"
#include "platform/linux/desktop/session/bus_calls.h"
#include "platform/testing/manual_dispatch.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/scripted_login_service.h"
#include "settings/hot_key_service.h"
#include "settings/user_settings.h"
#include "tests/platform/linux/desktop/keyboard/installed_layout.h"
#include "tests/platform/linux/desktop/keyboard/scripted_shortcuts_portal.h"
#include "tests/platform/linux/desktop/private_bus.h"

namespace tarnwick {
namespace {

using platform::busCall;
using platform::PortalHotKeys;
using platform::testing::InstalledLayout;
using platform::testing::ManualDispatch;
using platform::testing::MemoryUserDefaults;
using platform::testing::PrivateBus;
using platform::testing::ScriptedLoginService;
using platform::testing::ScriptedShortcutsPortal;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// As stored.
constexpr std::int64_t kL = 37;
constexpr std::int64_t kCommand = 0x100000;
constexpr std::int64_t kCommandShift = 0x120000;

class PortalShortcutTest : public ::testing::Test {
 protected:
    PortalShortcutTest() {
        settings.setShortcutKeyCode(kL);
        settings.setShortcutModifiers(kCommand);
        // As the application does.
        hotKeys.setRegistrationChanged(
            [this] { dispatch.async([this] { service.applyShortcut(settings); }); });
    }

    RegistrationState apply() {
        service.applyShortcut(settings);
        return settings.shortcutRegistrationState();
    }
    bool waitUntil(const std::function<bool()>& condition) {
        return platform::testing::waitUntil([&] {
            dispatch.runMain();
            return condition();
        });
    }
    bool waitFor(RegistrationState state) {
        return waitUntil([&] { return settings.shortcutRegistrationState() == state; });
    }
    /// Calls there and back, more than any conversation here takes.
    void settle() {
        for (int i = 0; i < 12; ++i) {
            platform::testing::ask(bus, busCall("GetId", {}));
            platform::testing::ask(portalBus, busCall("GetId", {}));
            dispatch.runMain();
        }
    }

    PrivateBus daemon;
    QDBusConnection bus = daemon.connect();
    QDBusConnection portalBus = daemon.connect();
    ScriptedShortcutsPortal portal{portalBus};
    InstalledLayout layout{"us"};
    ManualDispatch dispatch;
    MemoryUserDefaults store;
    ScriptedLoginService loginService;
    UserSettings settings{store, loginService};
    PortalHotKeys hotKeys{bus, layout, {.patience = std::chrono::hours(1)}};
    int triggers = 0;
    HotKeyService service{[this] { ++triggers; }, {hotKeys, dispatch}};
};

TEST_F(PortalShortcutTest, IsInactiveUntilTheUserDecidesAndTriggersOnceAPress) {
    portal.begin();
    portal.holdsResponse = true;
    EXPECT_EQ(apply(), RegistrationState::inactive);
    settle();
    EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::inactive);
    portal.respond();
    EXPECT_TRUE(waitFor(RegistrationState::active));
    for (int press = 1; press <= 3; ++press) {
        portal.press();
        EXPECT_TRUE(waitUntil([&] { return triggers == press; }));
    }
    settle();
    EXPECT_EQ(triggers, 3);
    EXPECT_EQ(portal.sessions.size(), 1);
}

TEST_F(PortalShortcutTest, BoundToKeysOfTheUsersChoiceIsActiveUntilTheNextChange) {
    portal.begin();
    portal.keys = "Meta+K";
    apply();
    EXPECT_TRUE(waitFor(RegistrationState::active));
    portal.press();
    EXPECT_TRUE(waitUntil([&] { return triggers == 1; }));
    portal.keys.reset();
    settings.setShortcutModifiers(kCommandShift);
    EXPECT_EQ(apply(), RegistrationState::inactive);
    EXPECT_TRUE(waitFor(RegistrationState::active));
    portal.press();
    EXPECT_TRUE(waitUntil([&] { return triggers == 2; }));
}

TEST_F(PortalShortcutTest, RefusedHasFailed) {
    portal.begin();
    portal.bindCode = 1;
    apply();
    EXPECT_TRUE(waitFor(RegistrationState::failed));
}

TEST_F(PortalShortcutTest, IsLostWithThePortalAndBackWithIt) {
    portal.begin();
    apply();
    ASSERT_TRUE(waitFor(RegistrationState::active));
    portal.end();
    EXPECT_TRUE(waitFor(RegistrationState::failed));
    portal.begin();
    EXPECT_TRUE(waitFor(RegistrationState::active));
    portal.press();
    EXPECT_TRUE(waitUntil([&] { return triggers == 1; }));
}

TEST_F(PortalShortcutTest, ClearedWhileTheUserDecidesIsInactiveAndStaysSo) {
    portal.begin();
    portal.holdsResponse = true;
    apply();
    settle();
    ASSERT_EQ(portal.sessions.size(), 1);
    settings.setShortcutKeyCode(-1);
    settings.setShortcutModifiers(0);
    EXPECT_EQ(apply(), RegistrationState::inactive);
    EXPECT_TRUE(waitUntil([&] { return portal.closed.contains(portal.sessions.last()); }));
    portal.respond();
    portal.press();
    settle();
    EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::inactive);
    EXPECT_EQ(triggers, 0);
}

TEST_F(PortalShortcutTest, WhoseKeysTheDesktopHasForSomethingElseIsInConflict) {
    portal.begin();
    portal.keys = "";
    apply();
    EXPECT_TRUE(waitFor(RegistrationState::conflict));
    portal.change({{portal.bound.last().id, {{"trigger_description", QString("Meta+J")}}}});
    EXPECT_TRUE(waitFor(RegistrationState::active));
}

TEST_F(PortalShortcutTest, ClearedWithoutKeysIsNotPressed) {
    portal.begin();
    portal.keys = "";
    apply();
    settle();
    settings.setShortcutKeyCode(-1);
    settings.setShortcutModifiers(0);
    EXPECT_EQ(apply(), RegistrationState::inactive);
    EXPECT_TRUE(waitUntil([&] { return portal.closed.contains(portal.sessions.last()); }));
    portal.press();
    settle();
    EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::inactive);
    EXPECT_EQ(triggers, 0);
}

TEST_F(PortalShortcutTest, ClearedIsGivenBackToThePortal) {
    portal.begin();
    apply();
    ASSERT_TRUE(waitFor(RegistrationState::active));
    settings.setShortcutKeyCode(-1);
    settings.setShortcutModifiers(0);
    EXPECT_EQ(apply(), RegistrationState::inactive);
    EXPECT_TRUE(waitUntil([&] { return !portal.closed.isEmpty(); }));
    EXPECT_THAT(portal.closed, ElementsAre(portal.sessions.last()));
    portal.press();
    settle();
    EXPECT_EQ(triggers, 0);
}

TEST_F(PortalShortcutTest, HasFailedWithoutAPortal) {
    EXPECT_EQ(apply(), RegistrationState::inactive);
    EXPECT_TRUE(waitFor(RegistrationState::failed));
    EXPECT_THAT(portal.calls, IsEmpty());
}

}  // namespace
}  // namespace tarnwick
