// SPDX-License-Identifier: MIT
#include "settings/hot_key_service.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "platform/testing/manual_dispatch.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/recording_log.h"
#include "platform/testing/scripted_hot_keys.h"
#include "platform/testing/scripted_login_service.h"
#include "tests/settings/key_numbers.h"

namespace tarnwick {
namespace {

using platform::HotKeyID;
using platform::LogLevel;
using platform::testing::ManualDispatch;
using platform::testing::MemoryUserDefaults;
using platform::testing::RecordingLog;
using platform::testing::ScriptedHotKeyEvent;
using platform::testing::ScriptedHotKeys;
using platform::testing::ScriptedLoginService;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

constexpr std::int32_t kNotHandled = -9874;
constexpr std::int32_t kTaken = -9878;
/// Any failure that means nothing special.
constexpr std::int32_t kRefused = -50;

constexpr std::uint32_t kTRNW = 'T' << 24 | 'R' << 16 | 'N' << 8 | 'W';

TEST(CarbonModifiers, TranslatesEachModifier) {
    EXPECT_EQ(carbonModifiers(kCommand), 256U);
    EXPECT_EQ(carbonModifiers(kShift), 512U);
    EXPECT_EQ(carbonModifiers(kOption), 2048U);
    EXPECT_EQ(carbonModifiers(kControl), 4096U);
    EXPECT_EQ(carbonModifiers(0), 0U);
}

TEST(CarbonModifiers, AddsThemUp) {
    EXPECT_EQ(carbonModifiers(kCommand | kShift), 768U);
    EXPECT_EQ(carbonModifiers(kCommand | kOption), 2304U);
    EXPECT_EQ(carbonModifiers(kCommand | kControl), 4352U);
    EXPECT_EQ(carbonModifiers(kCommand | kShift | kOption | kControl), 6912U);
}

TEST(CarbonModifiers, IgnoresAllOtherBits) {
    EXPECT_EQ(carbonModifiers(kCommand | 0x10000 | 0x800000 | 0xFFFF), 256U);
}

TEST(CarbonModifiersDeathTest, NegativeFlagsAreAFault) {
    EXPECT_DEATH(carbonModifiers(-1), "");
}

class HotKeyServiceTest : public ::testing::Test {
 protected:
    void SetUp() override {
        service = make();
        newLines();
    }

    std::unique_ptr<HotKeyService> make() {
        return std::make_unique<HotKeyService>(
            [this] { ++triggers; },
            HotKeyServiceEnvironment{hotKeys, dispatch, platform::Logger(log)});
    }

    /// What was logged since this was asked last.
    std::vector<RecordingLog::Line> newLines() {
        const auto all = log.lines();
        const std::vector<RecordingLog::Line> lines(
            all.begin() + static_cast<std::ptrdiff_t>(linesRead), all.end());
        linesRead = all.size();
        return lines;
    }
    std::vector<ScriptedHotKeys::HotKey> held() { return hotKeys.held(); }

    RegistrationState apply(std::int64_t keyCode, std::int64_t modifiers) {
        settings.setShortcutKeyCode(keyCode);
        settings.setShortcutModifiers(modifiers);
        service->applyShortcut(settings);
        return settings.shortcutRegistrationState();
    }

    ScriptedHotKeys hotKeys;
    ManualDispatch dispatch;
    RecordingLog log;
    std::size_t linesRead = 0;
    MemoryUserDefaults store;
    ScriptedLoginService loginService;
    UserSettings settings{store, loginService};
    int triggers = 0;
    std::unique_ptr<HotKeyService> service;
};

// Making and ending the service.

TEST_F(HotKeyServiceTest, InstallsOneHandlerAndNoHotKey) {
    EXPECT_THAT(hotKeys.calls.all(), ElementsAre("install"));
    EXPECT_THAT(held(), IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre(Pair(LogLevel::info, "InstallEventHandler SUCCESS"),
                                         Pair(LogLevel::info, "HotKeyService initialized")));
}

TEST_F(HotKeyServiceTest, SaysWhyTheHandlerCouldNotBeInstalled) {
    service.reset();
    hotKeys.installStatus.set(kRefused);
    service = make();
    EXPECT_THAT(newLines(),
                ElementsAre(Pair(LogLevel::error, "InstallEventHandler FAILED with status -50"),
                            Pair(LogLevel::info, "HotKeyService initialized")));
}

TEST_F(HotKeyServiceTest, GivesTheHotKeyBackBeforeTheHandler) {
    service->registerShortcut(kL, kCommand);
    hotKeys.calls.clear();
    newLines();
    service.reset();
    EXPECT_THAT(hotKeys.calls.all(), ElementsAre("unregister", "remove"));
    EXPECT_THAT(held(), IsEmpty());
    EXPECT_FALSE(hotKeys.hasHandler());
    EXPECT_THAT(newLines(), IsEmpty());
}

TEST_F(HotKeyServiceTest, GivesTheHandlerBackWithoutAHotKey) {
    hotKeys.calls.clear();
    service.reset();
    EXPECT_THAT(hotKeys.calls.all(), ElementsAre("remove"));
}

TEST_F(HotKeyServiceTest, LogsNothingByDefault) {
    service.reset();
    service = std::make_unique<HotKeyService>([this] { ++triggers; },
                                              HotKeyServiceEnvironment{hotKeys, dispatch});
    newLines();
    service->registerShortcut(kL, kCommand);
    hotKeys.press();
    dispatch.runMain();
    service->unregister();
    EXPECT_EQ(triggers, 1);
    EXPECT_THAT(newLines(), IsEmpty());
}

// Registering.

TEST_F(HotKeyServiceTest, RegistersUnderItsOwnIdentifier) {
    EXPECT_EQ(service->registerShortcut(kL, kCommand | kShift), RegistrationState::active);
    EXPECT_THAT(held(), ElementsAre(ScriptedHotKeys::HotKey{37, 768, HotKeyID{kTRNW, 1}}));
    EXPECT_EQ(kTRNW, 0x54524E57U);
}

TEST_F(HotKeyServiceTest, TellsItsSuccess) {
    service->registerShortcut(kL, kCommand);
    EXPECT_THAT(newLines(),
                ElementsAre(Pair(LogLevel::info, "Registering hot key: keyCode=37 carbonMods=256"),
                            Pair(LogLevel::info, "RegisterEventHotKey SUCCESS, ref=hot key 1")));
}

TEST_F(HotKeyServiceTest, IgnoresBitsThatAreNoModifiers) {
    EXPECT_EQ(service->registerShortcut(kL, kCommand | 0x10000 | 0x108), RegistrationState::active);
    EXPECT_EQ(held().at(0).modifiers, 256U);
}

TEST_F(HotKeyServiceTest, HoldsOneHotKeyAtATime) {
    service->registerShortcut(kL, kCommand);
    newLines();
    EXPECT_EQ(service->registerShortcut(kK, kCommand), RegistrationState::active);
    EXPECT_THAT(hotKeys.calls.all(),
                ElementsAre("install", "register 37 256", "unregister", "register 40 256"));
    EXPECT_THAT(newLines(),
                ElementsAre(Pair(LogLevel::info, "Unregistered hot key"),
                            Pair(LogLevel::info, "Registering hot key: keyCode=40 carbonMods=256"),
                            Pair(LogLevel::info, "RegisterEventHotKey SUCCESS, ref=hot key 2")));
    ASSERT_EQ(held().size(), 1U);
    EXPECT_EQ(held()[0].keyCode, 40U);
}

TEST_F(HotKeyServiceTest, SkipsWhatIsNoShortcut) {
    struct Case {
        std::int64_t keyCode;
        std::int64_t modifiers;
    };
    for (const Case& each :
         {Case{-1, 0}, Case{-1, kCommand}, Case{kL, 0}, Case{kL, kOption},
          Case{kL, kCommand | kShift | kOption}, Case{kL, kShift | kOption | kControl}}) {
        service->registerShortcut(kL, kCommand);
        hotKeys.calls.clear();
        newLines();
        EXPECT_EQ(service->registerShortcut(each.keyCode, each.modifiers),
                  RegistrationState::inactive);
        EXPECT_THAT(hotKeys.calls.all(), ElementsAre("unregister"));
        EXPECT_THAT(
            newLines(),
            ElementsAre(Pair(LogLevel::info, "Unregistered hot key"),
                        Pair(LogLevel::info, "register() skipped: shortcut is empty or invalid")));
    }
}

TEST_F(HotKeyServiceTest, FailsWithoutAHandler) {
    service.reset();
    hotKeys.installStatus.set(kRefused);
    service = make();
    hotKeys.calls.clear();
    newLines();
    EXPECT_EQ(service->registerShortcut(kL, kCommand), RegistrationState::failed);
    EXPECT_EQ(service->registerShortcut(kL, 0), RegistrationState::inactive);
    EXPECT_THAT(hotKeys.calls.all(), IsEmpty());
    EXPECT_THAT(newLines(), ElementsAre(Pair(LogLevel::info,
                                             "register() skipped: shortcut is empty or invalid")));
}

TEST_F(HotKeyServiceTest, IsInConflictWithWhoeverHoldsTheCombination) {
    service->registerShortcut(kK, kCommand);
    newLines();
    hotKeys.registerStatus.queue(kTaken);
    EXPECT_EQ(service->registerShortcut(kL, kCommand), RegistrationState::conflict);
    EXPECT_THAT(held(), IsEmpty());
    EXPECT_THAT(newLines(),
                ElementsAre(Pair(LogLevel::info, "Unregistered hot key"),
                            Pair(LogLevel::info, "Registering hot key: keyCode=37 carbonMods=256"),
                            Pair(LogLevel::error, "RegisterEventHotKey FAILED with status -9878")));
}

TEST_F(HotKeyServiceTest, FailsAfterAnyOtherRefusal) {
    for (const std::int32_t status : {kRefused, kNotHandled, -9877, -9879, 2}) {
        hotKeys.registerStatus.queue(status);
        newLines();
        EXPECT_EQ(service->registerShortcut(kL, kCommand), RegistrationState::failed);
        EXPECT_EQ(newLines().back(),
                  RecordingLog::Line(LogLevel::error, "RegisterEventHotKey FAILED with status " +
                                                          std::to_string(status)));
    }
}

TEST_F(HotKeyServiceTest, NothingHasFailedWhileTheDesktopAsksItsUser) {
    hotKeys.registerStatus.queue(platform::hot_key_status::kPending);
    EXPECT_EQ(apply(kL, kCommand), RegistrationState::inactive);
    EXPECT_THAT(held(), IsEmpty());
    for (const RecordingLog::Line& line : newLines()) {
        EXPECT_EQ(line.first, LogLevel::info) << line.second;
    }
}

TEST_F(HotKeyServiceTest, FailsWhereSuccessComesWithoutAHandle) {
    hotKeys.givesHandles = false;
    EXPECT_EQ(service->registerShortcut(kL, kCommand), RegistrationState::failed);
    EXPECT_EQ(newLines().back(),
              RecordingLog::Line(LogLevel::info, "RegisterEventHotKey SUCCESS, ref=none"));
    service->unregister();
    EXPECT_THAT(newLines(), IsEmpty());
}

TEST_F(HotKeyServiceTest, HasNothingToGiveBackAfterAFailure) {
    hotKeys.registerStatus.queue(kTaken);
    service->registerShortcut(kL, kCommand);
    newLines();
    service->unregister();
    EXPECT_THAT(newLines(), IsEmpty());
    EXPECT_THAT(hotKeys.calls.all(), ElementsAre("install", "register 37 256"));
}

TEST_F(HotKeyServiceTest, GivesAHotKeyBackOnce) {
    service->registerShortcut(kL, kCommand);
    newLines();
    service->unregister();
    EXPECT_THAT(held(), IsEmpty());
    EXPECT_THAT(newLines(), ElementsAre(Pair(LogLevel::info, "Unregistered hot key")));
    service->unregister();
    EXPECT_THAT(newLines(), IsEmpty());
}

TEST_F(HotKeyServiceTest, TakesTheLargestKeyCodeThatFits) {
    EXPECT_EQ(service->registerShortcut(4'294'967'295, kCommand), RegistrationState::active);
    EXPECT_EQ(held().at(0).keyCode, 4'294'967'295U);
    EXPECT_EQ(newLines().at(0),
              RecordingLog::Line(LogLevel::info,
                                 "Registering hot key: keyCode=4294967295 carbonMods=256"));
}

TEST_F(HotKeyServiceTest, AKeyCodeThatIsTooLargeIsOnlyAFaultInAShortcut) {
    EXPECT_EQ(service->registerShortcut(4'294'967'296, 0), RegistrationState::inactive);
    EXPECT_DEATH(service->registerShortcut(4'294'967'296, kCommand), "");
}

TEST_F(HotKeyServiceTest, NegativeFlagsAreAFault) {
    EXPECT_DEATH(service->registerShortcut(kL, -1), "");
    EXPECT_DEATH(service->registerShortcut(-1, -1), "");
}

// Only an error in this program can cause the pairs above, but any program can store these.
TEST_F(HotKeyServiceTest, AnImpossibleStoredNumberIsNoShortcut) {
    constexpr auto kSmallest = std::numeric_limits<std::int64_t>::min();
    constexpr auto kLargest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(apply(kL, -1), RegistrationState::inactive);
    EXPECT_EQ(apply(kL, kSmallest), RegistrationState::inactive);
    EXPECT_EQ(apply(-1, kSmallest), RegistrationState::inactive);
    EXPECT_EQ(apply(4'294'967'296, kCommand), RegistrationState::inactive);
    EXPECT_EQ(apply(kLargest, kCommand), RegistrationState::inactive);
    EXPECT_EQ(apply(kSmallest, kCommand), RegistrationState::inactive);
    EXPECT_THAT(held(), IsEmpty());
    EXPECT_EQ(apply(kL, kCommand), RegistrationState::active);
}

// The stored shortcut.

TEST_F(HotKeyServiceTest, AStoredShortcutBecomesActive) {
    EXPECT_EQ(apply(kL, kCommand), RegistrationState::active);
    EXPECT_EQ(held().size(), 1U);
}

TEST_F(HotKeyServiceTest, NoStoredShortcutIsInactive) {
    EXPECT_EQ(apply(-1, 0), RegistrationState::inactive);
    EXPECT_THAT(hotKeys.calls.all(), ElementsAre("install"));
    EXPECT_THAT(newLines(), IsEmpty());
}

TEST_F(HotKeyServiceTest, AnInvalidStoredShortcutTakesTheLastOneAway) {
    apply(kL, kCommand);
    newLines();
    EXPECT_EQ(apply(kK, kCommand | kShift | kOption), RegistrationState::inactive);
    EXPECT_THAT(held(), IsEmpty());
    EXPECT_THAT(newLines(), ElementsAre(Pair(LogLevel::info, "Unregistered hot key")));
}

TEST_F(HotKeyServiceTest, AShortcutThatIsStillAskedForIsWithdrawnWhenItIsCleared) {
    hotKeys.registerStatus.queue(kRefused);
    EXPECT_EQ(apply(kL, kCommand), RegistrationState::failed);
    EXPECT_EQ(hotKeys.withdrawals, 0);
    EXPECT_EQ(apply(-1, 0), RegistrationState::inactive);
    EXPECT_EQ(hotKeys.withdrawals, 1);
    service->registerShortcut(-1, kCommand);
    EXPECT_EQ(hotKeys.withdrawals, 2);
}

TEST_F(HotKeyServiceTest, NothingIsWithdrawnThatIsAskedForAgain) {
    hotKeys.registerStatus.queue(kRefused);
    apply(kL, kCommand);
    apply(kL, kCommand);
    apply(kK, kCommand);
    EXPECT_EQ(hotKeys.withdrawals, 0);
}

TEST_F(HotKeyServiceTest, ATakenShortcutIsInConflictUntilItIsAppliedAgain) {
    hotKeys.registerStatus.queue(kTaken);
    EXPECT_EQ(apply(kL, kCommand), RegistrationState::conflict);
    EXPECT_THAT(held(), IsEmpty());
    EXPECT_EQ(apply(kL, kCommand), RegistrationState::active);
    EXPECT_EQ(held().size(), 1U);
}

TEST_F(HotKeyServiceTest, ARefusedShortcutHasFailed) {
    hotKeys.registerStatus.queue(kRefused);
    EXPECT_EQ(apply(kL, kCommand), RegistrationState::failed);
}

TEST_F(HotKeyServiceTest, EveryStateLeadsToEveryOther) {
    struct Step {
        std::int64_t keyCode;
        std::int32_t status;
        RegistrationState state;
    };
    const std::vector<Step> steps = {{-1, 0, RegistrationState::inactive},
                                     {kL, 0, RegistrationState::active},
                                     {kL, kTaken, RegistrationState::conflict},
                                     {kL, kRefused, RegistrationState::failed}};
    for (const Step& from : steps) {
        for (const Step& to : steps) {
            for (const Step& step : {from, to}) {
                hotKeys.registerStatus.set(step.status);
                EXPECT_EQ(apply(step.keyCode, kCommand), step.state);
                EXPECT_EQ(held().empty(), step.state != RegistrationState::active);
            }
        }
    }
}

TEST_F(HotKeyServiceTest, TheSameShortcutIsGivenBackAndRegisteredAgain) {
    apply(kL, kCommand);
    newLines();
    EXPECT_EQ(apply(kL, kCommand), RegistrationState::active);
    EXPECT_THAT(newLines(),
                ElementsAre(Pair(LogLevel::info, "Unregistered hot key"),
                            Pair(LogLevel::info, "Registering hot key: keyCode=37 carbonMods=256"),
                            Pair(LogLevel::info, "RegisterEventHotKey SUCCESS, ref=hot key 2")));
}

TEST_F(HotKeyServiceTest, ASystemWithoutHotKeysFailsEveryShortcut) {
    platform::NullHotKeys none;
    HotKeyService unable([] {}, {none, dispatch});
    settings.setShortcutKeyCode(kL);
    settings.setShortcutModifiers(kCommand);
    unable.applyShortcut(settings);
    EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::failed);
    settings.setShortcutKeyCode(-1);
    unable.applyShortcut(settings);
    EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::inactive);
}

// Presses.

TEST_F(HotKeyServiceTest, APressRunsTheActionOnALaterTurn) {
    service->registerShortcut(kL, kCommand);
    newLines();
    EXPECT_EQ(hotKeys.press(), 0);
    EXPECT_EQ(triggers, 0);
    EXPECT_THAT(newLines(), IsEmpty());
    dispatch.runMain();
    EXPECT_EQ(triggers, 1);
    EXPECT_THAT(newLines(),
                ElementsAre(Pair(LogLevel::info, "Hot key PRESSED — invoking onTrigger")));
}

TEST_F(HotKeyServiceTest, EveryPressRunsTheAction) {
    service->registerShortcut(kL, kCommand);
    hotKeys.press();
    hotKeys.press();
    dispatch.runMain();
    EXPECT_EQ(triggers, 2);
}

TEST_F(HotKeyServiceTest, SaysThatItWasPressedBeforeTheAction) {
    service.reset();
    std::size_t lines = 0;
    HotKeyService other([&] { lines = newLines().size(); },
                        {hotKeys, dispatch, platform::Logger(log)});
    other.registerShortcut(kL, kCommand);
    newLines();
    hotKeys.press();
    dispatch.runMain();
    EXPECT_EQ(lines, 1U);
}

TEST_F(HotKeyServiceTest, ACallWithoutAnEventIsNotHandled) {
    EXPECT_EQ(hotKeys.send(nullptr), kNotHandled);
    dispatch.runMain();
    EXPECT_EQ(triggers, 0);
}

TEST_F(HotKeyServiceTest, PassesOnThatAnIdentifierCannotBeRead) {
    const auto event = ScriptedHotKeyEvent::unreadable(-9870);
    EXPECT_EQ(hotKeys.send(&event), -9870);
    dispatch.runMain();
    EXPECT_EQ(triggers, 0);
}

TEST_F(HotKeyServiceTest, AnotherSignatureIsPassedOn) {
    const ScriptedHotKeyEvent event(HotKeyID{kTRNW + 1, 1});
    EXPECT_EQ(hotKeys.send(&event), kNotHandled);
    dispatch.runMain();
    EXPECT_EQ(triggers, 0);
}

TEST_F(HotKeyServiceTest, TheNumberOfTheHotKeyDoesNotMatter) {
    const ScriptedHotKeyEvent event(HotKeyID{kTRNW, 2});
    EXPECT_EQ(hotKeys.send(&event), 0);
    dispatch.runMain();
    EXPECT_EQ(triggers, 1);
}

TEST_F(HotKeyServiceTest, APressThatArrivesWhileTheServiceEndsDoesNothing) {
    service->registerShortcut(kL, kCommand);
    hotKeys.press();
    newLines();
    service.reset();
    dispatch.runMain();
    EXPECT_EQ(triggers, 0);
    EXPECT_THAT(newLines(), IsEmpty());
}

TEST_F(HotKeyServiceTest, APressGoesToTheLatestService) {
    int latest = 0;
    ScriptedHotKeys others;
    auto second = std::make_unique<HotKeyService>([&latest] { ++latest; },
                                                  HotKeyServiceEnvironment{others, dispatch});
    service->registerShortcut(kL, kCommand);
    EXPECT_EQ(hotKeys.press(), 0);
    dispatch.runMain();
    EXPECT_EQ(triggers, 0);
    EXPECT_EQ(latest, 1);
    // Presses go nowhere once the second service is destroyed.
    second.reset();
    EXPECT_EQ(hotKeys.press(), 0);
    dispatch.runMain();
    EXPECT_EQ(triggers, 0);
}

TEST_F(HotKeyServiceTest, TheActionMayEndTheService) {
    service.reset();
    int runs = 0;
    service = std::make_unique<HotKeyService>(
        [this, &runs] {
            service.reset();
            ++runs;
        },
        HotKeyServiceEnvironment{hotKeys, dispatch});
    service->registerShortcut(kL, kCommand);
    hotKeys.press();
    dispatch.runMain();
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(service, nullptr);
}

TEST_F(HotKeyServiceTest, NobodyHasToListen) {
    service.reset();
    service = std::make_unique<HotKeyService>(nullptr, HotKeyServiceEnvironment{hotKeys, dispatch});
    service->registerShortcut(kL, kCommand);
    EXPECT_EQ(hotKeys.press(), 0);
    dispatch.runMain();
}

}  // namespace
}  // namespace tarnwick
