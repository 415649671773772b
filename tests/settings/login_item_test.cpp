// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/recording_log.h"
#include "platform/testing/scripted_login_service.h"
#include "settings/user_settings.h"

namespace tarnwick {
namespace {

using platform::DefaultsValue;
using platform::LoginServiceError;
using platform::LoginServiceStatus;
using platform::LogLevel;
using platform::testing::MemoryUserDefaults;
using platform::testing::RecordingLog;
using platform::testing::ScriptedLoginService;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using Call = ScriptedLoginService::Call;

constexpr const char* kKey = "settings.launchOnLogin";

class LoginItem : public ::testing::Test {
 protected:
    DefaultsValue stored() { return store.values().at(kKey); }

    MemoryUserDefaults store;
    ScriptedLoginService service;
    RecordingLog log;
};

// Keeping the preference in step at launch.

class LoginItemWhenOff : public LoginItem,
                         public ::testing::WithParamInterface<LoginServiceStatus> {};

TEST_P(LoginItemWhenOff, OnlyEnabledCountsAsOn) {
    store.set(kKey, true);
    service.setStatus(GetParam());
    const UserSettings settings(store, service, platform::Logger(log));
    EXPECT_FALSE(settings.launchOnLogin());
    EXPECT_EQ(stored(), DefaultsValue(false));
    EXPECT_THAT(log.lines(), ElementsAre(Pair(LogLevel::info, "Synced login item state: 0")));
}

INSTANTIATE_TEST_SUITE_P(Statuses, LoginItemWhenOff,
                         ::testing::Values(LoginServiceStatus::notRegistered,
                                           LoginServiceStatus::requiresApproval,
                                           LoginServiceStatus::notFound),
                         [](const auto& test) {
                             return "Status" + std::to_string(static_cast<int>(test.param));
                         });

TEST_F(LoginItem, ASystemThatDoesNotAnswerLeavesThePreference) {
    service.setStatus(LoginServiceStatus::unanswered);
    for (const bool preference : {true, false}) {
        store.set(kKey, preference);
        const UserSettings settings(store, service, platform::Logger(log));
        EXPECT_EQ(settings.launchOnLogin(), preference);
    }
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(LoginItem, AnAnswerThatComesLateIsSyncedThen) {
    service.setStatus(LoginServiceStatus::unanswered);
    store.set(kKey, true);
    UserSettings settings(store, service, platform::Logger(log));
    service.answerLate(LoginServiceStatus::notRegistered);
    EXPECT_FALSE(settings.launchOnLogin());
    EXPECT_THAT(log.lines(), ElementsAre(Pair(LogLevel::info, "Synced login item state: 0")));
    // As after a change whose failure comes late.
    settings.setLaunchOnLogin(true);
    service.setStatus(LoginServiceStatus::unanswered);
    service.setRegisterError(LoginServiceError{"later"});
    settings.updateLoginItem();
    EXPECT_TRUE(settings.launchOnLogin());
    service.answerLate(LoginServiceStatus::notRegistered);
    EXPECT_FALSE(settings.launchOnLogin());
}

TEST_F(LoginItem, EnabledElsewhereTurnsThePreferenceOnAtLaunch) {
    store.set(kKey, false);
    service.setStatus(LoginServiceStatus::enabled);
    const UserSettings settings(store, service, platform::Logger(log));
    EXPECT_TRUE(settings.launchOnLogin());
    EXPECT_EQ(stored(), DefaultsValue(true));
    EXPECT_THAT(log.lines(), ElementsAre(Pair(LogLevel::info, "Synced login item state: 1")));
}

TEST_F(LoginItem, EnabledTurnsAPreferenceNeverStoredOn) {
    service.setStatus(LoginServiceStatus::enabled);
    const UserSettings settings(store, service, platform::Logger(log));
    EXPECT_TRUE(settings.launchOnLogin());
    EXPECT_EQ(stored(), DefaultsValue(true));
}

TEST_F(LoginItem, AgreementOnOnWritesAndLogsNothing) {
    store.set(kKey, true);
    service.setStatus(LoginServiceStatus::enabled);
    const std::size_t before = store.writes().size();
    const UserSettings settings(store, service, platform::Logger(log));
    EXPECT_EQ(store.writes().size(), before);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(LoginItem, AgreementOnOffWritesAndLogsNothing) {
    const UserSettings settings(store, service, platform::Logger(log));
    EXPECT_THAT(store.writes(), IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(LoginItem, LaunchOnlyAsksForTheStatus) {
    store.set(kKey, true);
    const UserSettings settings(store, service, platform::Logger(log));
    EXPECT_THAT(service.calls(), ElementsAre(Call::status));
}

TEST_F(LoginItem, TheSyncAnnouncesItsWriteBeforehand) {
    UserSettings settings(store, service);
    service.setStatus(LoginServiceStatus::enabled);
    int announced = 0;
    bool seen = true;
    const auto observation = settings.objectWillChange([&] {
        ++announced;
        seen = settings.launchOnLogin();
    });
    settings.syncLoginItemState();
    EXPECT_EQ(announced, 1);
    EXPECT_FALSE(seen);
    settings.syncLoginItemState();
    EXPECT_EQ(announced, 1);
}

// Doing what the user asked for.

class LoginItemUpdate : public LoginItem {
 protected:
    /// The toggle has been flipped to `on` after launch with the service in `status`.
    void flip(LoginServiceStatus status, bool on) {
        service.setStatus(status);
        settings.setLaunchOnLogin(!on);
        settings.setLaunchOnLogin(on);
        service.clearCalls();
    }

    UserSettings settings{store, service, platform::Logger(log)};
};

TEST_F(LoginItemUpdate, OnRegisters) {
    flip(LoginServiceStatus::notRegistered, true);
    settings.updateLoginItem();
    EXPECT_THAT(service.calls(), ElementsAre(Call::registerService));
    EXPECT_THAT(log.lines(), ElementsAre(Pair(LogLevel::info, "Registered as login item")));
    EXPECT_TRUE(settings.launchOnLogin());
}

TEST_F(LoginItemUpdate, OffUnregisters) {
    flip(LoginServiceStatus::enabled, false);
    settings.updateLoginItem();
    EXPECT_THAT(service.calls(), ElementsAre(Call::unregisterService));
    EXPECT_THAT(log.lines(), ElementsAre(Pair(LogLevel::info, "Unregistered from login items")));
    EXPECT_FALSE(settings.launchOnLogin());
}

TEST_F(LoginItemUpdate, ARefusedRegistrationTurnsThePreferenceOffAgain) {
    flip(LoginServiceStatus::notRegistered, true);
    service.setRegisterError(LoginServiceError{"The operation couldn’t be completed."});
    settings.updateLoginItem();
    EXPECT_FALSE(settings.launchOnLogin());
    EXPECT_EQ(stored(), DefaultsValue(false));
    EXPECT_THAT(service.calls(), ElementsAre(Call::registerService, Call::status));
    EXPECT_THAT(log.lines(),
                ElementsAre(Pair(LogLevel::error,
                                 "Login item update failed: The operation couldn’t be completed."),
                            Pair(LogLevel::info, "Synced login item state: 0")));
}

TEST_F(LoginItemUpdate, ARegistrationRefusedBecauseItIsEnabledLeavesThePreferenceOn) {
    flip(LoginServiceStatus::enabled, true);
    service.setRegisterError(LoginServiceError{"already there"});
    settings.updateLoginItem();
    EXPECT_TRUE(settings.launchOnLogin());
    EXPECT_THAT(log.lines(),
                ElementsAre(Pair(LogLevel::error, "Login item update failed: already there")));
}

TEST_F(LoginItemUpdate, ARefusedRemovalTurnsThePreferenceOnAgain) {
    flip(LoginServiceStatus::enabled, false);
    service.setUnregisterError(LoginServiceError{"denied"});
    settings.updateLoginItem();
    EXPECT_TRUE(settings.launchOnLogin());
    EXPECT_THAT(service.calls(), ElementsAre(Call::unregisterService, Call::status));
    EXPECT_THAT(log.lines(), ElementsAre(Pair(LogLevel::error, "Login item update failed: denied"),
                                         Pair(LogLevel::info, "Synced login item state: 1")));
}

TEST_F(LoginItemUpdate, AFailedRemovalOfWhatIsNotRegisteredLeavesThePreferenceOff) {
    flip(LoginServiceStatus::notRegistered, false);
    service.setUnregisterError(LoginServiceError{"not registered"});
    settings.updateLoginItem();
    EXPECT_FALSE(settings.launchOnLogin());
    EXPECT_THAT(log.lines(),
                ElementsAre(Pair(LogLevel::error, "Login item update failed: not registered")));
}

TEST_F(LoginItemUpdate, ASuccessfulRemovalOfWhatIsNotRegisteredIsLoggedAsSuccess) {
    flip(LoginServiceStatus::notRegistered, false);
    settings.updateLoginItem();
    EXPECT_FALSE(settings.launchOnLogin());
    EXPECT_THAT(log.lines(), ElementsAre(Pair(LogLevel::info, "Unregistered from login items")));
}

TEST_F(LoginItem, ASuccessThatTheSystemDoesNotKeepIsCorrectedAtTheNextLaunch) {
    {
        UserSettings settings(store, service);
        settings.setLaunchOnLogin(true);
        settings.updateLoginItem();
        service.setStatus(LoginServiceStatus::requiresApproval);
        EXPECT_TRUE(settings.launchOnLogin());
    }
    const UserSettings settings(store, service);
    EXPECT_FALSE(settings.launchOnLogin());
}

TEST_F(LoginItem, WithoutALoginServiceTheToggleSnapsBack) {
    platform::NullLoginService none;
    UserSettings settings(store, none, platform::Logger(log));
    settings.setLaunchOnLogin(true);
    settings.updateLoginItem();
    EXPECT_FALSE(settings.launchOnLogin());
    EXPECT_THAT(
        log.lines(),
        ElementsAre(
            Pair(LogLevel::error,
                 "Login item update failed: Start at login is not available on this system"),
            Pair(LogLevel::info, "Synced login item state: 0")));
}

// A preference that somebody else writes into the store.

TEST_F(LoginItem, APreferenceThatSomebodyElseStoresIsBroughtToTheSystem) {
    const UserSettings settings(store, service, platform::Logger(log));
    service.clearCalls();
    store.changeFromOutside({{kKey, true}});
    EXPECT_THAT(service.calls(), ElementsAre(Call::registerService));
    store.changeFromOutside({{kKey, false}});
    EXPECT_THAT(service.calls(), ElementsAre(Call::registerService, Call::unregisterService));
}

TEST_F(LoginItem, APreferenceThatSomebodyElseStoresIsPutBackWhereTheSystemRefuses) {
    const UserSettings settings(store, service, platform::Logger(log));
    service.setRegisterError(LoginServiceError{"no"});
    store.changeFromOutside({{kKey, true}});
    EXPECT_FALSE(settings.launchOnLogin());
}

TEST_F(LoginItem, OtherChangesOfSomebodyElseLeaveTheSystemAlone) {
    service.setStatus(LoginServiceStatus::enabled);
    UserSettings settings(store, service, platform::Logger(log));
    service.clearCalls();
    store.changeFromOutside({{"settings.cpuHighThreshold", 70.0}});
    EXPECT_THAT(service.calls(), IsEmpty());
    settings.setLaunchOnLogin(false);
    settings.updateLoginItem();
    service.clearCalls();
    store.changeFromOutside({{"settings.cpuHighThreshold", 71.0}});
    EXPECT_THAT(service.calls(), IsEmpty());
}

}  // namespace
}  // namespace tarnwick
