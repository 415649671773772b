// SPDX-License-Identifier: MIT
#include "app/app_delegate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/testing/manual_dispatch.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/scripted_login_service.h"

namespace tarnwick {
namespace {

using platform::testing::ManualDispatch;
using platform::testing::MemoryUserDefaults;
using platform::testing::ScriptedLoginService;
using testing::ElementsAre;

class AppDelegateTest : public testing::Test {
 protected:
    AppDelegate makeDelegate() { return makeDelegate(settings); }
    AppDelegate makeDelegate(UserSettings& of) {
        return AppDelegate(
            of, dispatch, [this] { steps.push_back("settings"); },
            [this] {
                steps.push_back("panel");
                attemptTimes.push_back(dispatch.now());
                return static_cast<int>(attemptTimes.size()) > refusals;
            });
    }

    ManualDispatch dispatch;
    MemoryUserDefaults store;
    ScriptedLoginService loginService;
    UserSettings settings{store, loginService};
    /// How many attempts find no item.
    int refusals = 0;
    std::vector<std::string> steps;
    std::vector<double> attemptTimes;
};

TEST_F(AppDelegateTest, FirstLaunchOpensSettingsThenPanel) {
    AppDelegate delegate = makeDelegate();
    delegate.applicationDidFinishLaunching();
    EXPECT_THAT(steps, ElementsAre());  // Only queued: the item comes up first.
    dispatch.runMain();
    EXPECT_THAT(steps, ElementsAre("settings", "panel"));
    EXPECT_TRUE(settings.hasPresentedInitialSettings());
}

TEST_F(AppDelegateTest, SecondLaunchOpensNeither) {
    settings.setHasPresentedInitialSettings(true);
    AppDelegate delegate = makeDelegate();
    delegate.applicationDidFinishLaunching();
    dispatch.advance(10);
    EXPECT_THAT(steps, ElementsAre());
}

TEST_F(AppDelegateTest, SecondLaunchOpensNeitherWhereTheSettingsComeLate) {
    MemoryUserDefaults slow;
    slow.beSlow();
    UserSettings late(slow, loginService);
    AppDelegate delegate = makeDelegate(late);
    delegate.applicationDidFinishLaunching();
    dispatch.advance(10);
    // Of itself a change says nothing of what is stored.
    late.setShortcutRegistrationState(RegistrationState::failed);
    dispatch.advance(10);
    EXPECT_THAT(slow.writes(), ElementsAre());
    slow.changeFromOutside({{"settings.hasPresentedInitialSettings", true}});
    dispatch.advance(10);
    EXPECT_THAT(steps, ElementsAre());
}

TEST_F(AppDelegateTest, FirstLaunchWaitsForSettingsThatComeLateAndStoresNoShortcut) {
    MemoryUserDefaults slow;
    slow.beSlow();
    UserSettings late(slow, loginService);
    AppDelegate delegate = makeDelegate(late);
    delegate.applicationDidFinishLaunching();
    dispatch.advance(10);
    EXPECT_THAT(steps, ElementsAre());
    slow.changeFromOutside({});
    dispatch.advance(10);
    EXPECT_THAT(steps, ElementsAre("settings", "panel"));
    EXPECT_EQ(slow.text("settings.menuBarDisplayMode"), "advanced");
    EXPECT_FALSE(slow.contains("settings.shortcutKeyCode"));
    late.setCPUHigh(91);
    dispatch.advance(10);
    EXPECT_THAT(steps, ElementsAre("settings", "panel"));
}

TEST_F(AppDelegateTest, ADelegateThatIsGoneWaitsForNoSettings) {
    MemoryUserDefaults slow;
    slow.beSlow();
    UserSettings late(slow, loginService);
    {
        AppDelegate delegate = makeDelegate(late);
        delegate.applicationDidFinishLaunching();
        dispatch.runMain();
    }
    slow.changeFromOutside({});
    dispatch.advance(10);
    EXPECT_THAT(steps, ElementsAre());
}

TEST_F(AppDelegateTest, AnItemThatComesLateIsWaitedFor) {
    refusals = 3;
    AppDelegate delegate = makeDelegate();
    delegate.applicationDidFinishLaunching();
    dispatch.advance(10);
    EXPECT_THAT(steps, ElementsAre("settings", "panel", "panel", "panel", "panel"));
    ASSERT_EQ(attemptTimes.size(), 4U);
    for (std::size_t i = 0; i < attemptTimes.size(); ++i) {
        EXPECT_NEAR(attemptTimes[i], static_cast<double>(i) * 0.12, 1e-6);
    }
}

TEST_F(AppDelegateTest, ThereAreSixAttemptsAtMost) {
    refusals = 100;
    AppDelegate delegate = makeDelegate();
    delegate.applicationDidFinishLaunching();
    dispatch.advance(60);
    EXPECT_EQ(attemptTimes.size(), 6U);
    EXPECT_NEAR(attemptTimes.back(), 0.6, 1e-6);
}

TEST_F(AppDelegateTest, ADelegateThatIsGoneStillFinishesItsAttempts) {
    refusals = 1;
    {
        AppDelegate delegate = makeDelegate();
        delegate.applicationDidFinishLaunching();
    }
    dispatch.advance(1);
    EXPECT_THAT(steps, ElementsAre("settings", "panel", "panel"));
}

TEST_F(AppDelegateTest, APanelThatTheUserAskedForBeforeIsLeftAlone) {
    AppDelegate delegate = makeDelegate();
    delegate.panelWasAskedFor();
    delegate.applicationDidFinishLaunching();
    dispatch.advance(10);
    EXPECT_THAT(steps, ElementsAre("settings"));
    EXPECT_TRUE(settings.hasPresentedInitialSettings());
}

TEST_F(AppDelegateTest, APanelThatTheUserAskedForWhileTheItemIsLateIsLeftAlone) {
    refusals = 100;
    AppDelegate delegate = makeDelegate();
    delegate.applicationDidFinishLaunching();
    dispatch.advance(0.2);
    const std::size_t before = attemptTimes.size();
    EXPECT_EQ(before, 2U);
    delegate.panelWasAskedFor();
    dispatch.advance(10);
    EXPECT_EQ(attemptTimes.size(), before);
}

}  // namespace
}  // namespace tarnwick
