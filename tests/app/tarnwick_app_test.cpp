// SPDX-License-Identifier: MIT
#include "app/tarnwick_app.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <utility>
#include <vector>

#include "platform/testing/manual_dispatch.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/recording_log.h"
#include "platform/testing/scripted_hot_keys.h"
#include "platform/testing/scripted_login_service.h"
#include "platform/testing/scripted_status_item.h"
#include "platform/testing/scripted_windows.h"
#include "tests/services/no_battery.h"

namespace tarnwick {
namespace {

using platform::LogLevel;
using platform::testing::ManualDispatch;
using platform::testing::MemoryUserDefaults;
using platform::testing::RecordingLog;
using platform::testing::ScriptedHotKeys;
using platform::testing::ScriptedLoginService;
using platform::testing::ScriptedStatusItem;
using platform::testing::ScriptedWindows;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

constexpr std::int64_t kCommand = 0x100000;
constexpr std::int64_t kShift = 0x20000;

class TarnwickAppTest : public testing::Test {
 protected:
    TarnwickAppTest() { cpu.coreCount = 4; }

    MetricSources sources() {
        return {.readCPUInfo = [this] { return cpu; },
                .readGPUInfo = [] { return GPUInfo{}; },
                .readMemoryInfo = [] { return MemoryInfo{.total = 100, .used = 30}; },
                .readNetworkInfo = [] { return NetworkInfo{}; },
                .readTopProcesses = [](int) { return TopProcessLists{}; },
                .pruneStaleProcesses = [] {},
                .releaseProcessCaches = [] {},
                .readStorageInfo =
                    [] {
                        StorageInfo volume;
                        volume.totalSpace = 100;
                        volume.usedSpace = 50;
                        return volume;
                    },
                .readThermalState = [] { return std::int64_t{0}; },
                .readUptime = [] { return 5.0; }};
    }

    TarnwickAppDesktop desktop(platform::StatusItem& statusItem) {
        return {statusItem, windows, [this](UserSettings& edited) {
                    editedSettings.push_back(&edited);
                    return std::make_unique<platform::View>();
                }};
    }
    TarnwickAppEnvironment environment() {
        return {settings, noBattery(store),
                StatsManagerEnvironment{dispatch, sources(), [this] { return time; },
                                        platform::Logger()},
                hotKeys, platform::Logger(log)};
    }
    std::unique_ptr<TarnwickApp> makeApp() {
        return std::make_unique<TarnwickApp>(desktop(item), environment());
    }
    void storeShortcut(std::int64_t keyCode, std::int64_t modifiers) {
        settings.setShortcutKeyCode(keyCode);
        settings.setShortcutModifiers(modifiers);
    }
    /// An application with Command-L; the registration is finished.
    std::unique_ptr<TarnwickApp> makeAppWithShortcut() {
        storeShortcut(37, kCommand);
        auto app = makeApp();
        dispatch.runMain();
        hotKeys.calls.clear();
        return app;
    }

    ManualDispatch dispatch;
    MemoryUserDefaults store;
    ScriptedLoginService loginService;
    UserSettings settings{store, loginService};
    ScriptedStatusItem item;
    ScriptedWindows windows;
    ScriptedHotKeys hotKeys;
    RecordingLog log;
    /// What each settings window was made to edit.
    std::vector<UserSettings*> editedSettings;
    CPUInfo cpu;
    /// Minute 0 of an hour, or 15, 30 or 45: in every time zone a multiple of the three metrics
    /// that are shown in turn.
    double time = 0;
};

TEST_F(TarnwickAppTest, ShowsALoadingLabelBeforeTheFirstMeasurement) {
    const auto app = makeApp();
    ASSERT_EQ(item.contents.size(), 1U);
    EXPECT_EQ(item.contents[0].symbol, "checkmark.circle.fill");
    EXPECT_EQ(item.contents[0].tint, Tint::green);
    EXPECT_EQ(item.contents[0].text, "Loading...");
    EXPECT_EQ(item.contents[0].accessibilityLabel, "Tarnwick status: Loading...");
}

/// Looks around when it is shown its first content.
class WatchingItem final : public platform::StatusItem {
 public:
    explicit WatchingItem(std::function<void()> firstContent)
        : firstContent_(std::move(firstContent)) {}

    void setContent(const platform::StatusItemContent&) override {
        if (const auto look = std::exchange(firstContent_, nullptr)) {
            look();
        }
    }
    void setActions(platform::StatusItemActions) override {}
    bool inTray() const override { return true; }
    bool performClick() override { return true; }

 private:
    std::function<void()> firstContent_;
};

TEST_F(TarnwickAppTest, PollingBeginsBeforeTheLabelAppearsAndTheShortcutComesAfterIt) {
    storeShortcut(37, kCommand);
    int looks = 0;
    WatchingItem watching([&] {
        ++looks;
        EXPECT_GT(dispatch.asyncCount() + dispatch.detachedCount(), 0U);
        EXPECT_THAT(hotKeys.calls.all(), IsEmpty());
        EXPECT_EQ(windows.living(), 0);
        EXPECT_FALSE(settings.hasPresentedInitialSettings());
    });
    ASSERT_EQ(dispatch.asyncCount() + dispatch.detachedCount(), 0U);
    TarnwickApp app(desktop(watching), environment());
    EXPECT_EQ(looks, 1);
    EXPECT_THAT(hotKeys.calls.all(), ElementsAre("install", "register 37 256"));
    // The greeting waits until the application is up.
    EXPECT_FALSE(settings.hasPresentedInitialSettings());
}

TEST_F(TarnwickAppTest, ManyWritesInOneTurnRebuildTheLabelOnce) {
    const auto app = makeApp();
    dispatch.runMain();
    item.contents.clear();
    app->statsManager().cpuInfo.set(cpu);
    app->statsManager().memoryInfo.set({});
    settings.setCPUHigh(91);
    EXPECT_TRUE(item.contents.empty());
    dispatch.runMain();
    EXPECT_EQ(item.contents.size(), 1U);
}

TEST_F(TarnwickAppTest, TheLabelFollowsEveryMeasurement) {
    const auto app = makeApp();
    dispatch.runMain();
    cpu.usagePercentage = 93.4;
    dispatch.advance(12);
    EXPECT_EQ(item.contents.back().text, "CPU 93%");
    EXPECT_EQ(item.contents.back().tint, Tint::red);
    EXPECT_EQ(item.contents.back().symbol, "exclamationmark.triangle.fill");
}

TEST_F(TarnwickAppTest, TheLabelTurnsWithTheMinuteAtTheNextFastRefreshAtTheLatest) {
    const auto app = makeApp();
    dispatch.runMain();
    EXPECT_EQ(item.contents.back().text, "CPU 0%");
    time = 60;
    dispatch.advance(12);
    EXPECT_EQ(item.contents.back().text, "RAM 30%");
    time = 120;
    dispatch.advance(12);
    EXPECT_EQ(item.contents.back().text, "Disk 50%");
}

TEST_F(TarnwickAppTest, TheLabelFollowsTheDisplayModeAtOnce) {
    const auto app = makeApp();
    dispatch.runMain();
    settings.setMenuBarDisplayMode(MenuBarDisplayMode::iconOnly);
    dispatch.runMain();
    EXPECT_FALSE(item.contents.back().text.has_value());
    EXPECT_NE(item.contents.back().accessibilityLabel, "Tarnwick status: ");
    settings.setMenuBarDisplayMode(MenuBarDisplayMode::advanced);
    dispatch.runMain();
    EXPECT_TRUE(item.contents.back().text.has_value());
}

TEST_F(TarnwickAppTest, TheLabelFollowsTheThresholdsAtOnce) {
    cpu.usagePercentage = 50;
    const auto app = makeApp();
    dispatch.runMain();
    EXPECT_EQ(item.contents.back().tint, Tint::green);
    settings.setCPUNormal(40);
    dispatch.runMain();
    EXPECT_EQ(item.contents.back().tint, Tint::yellow);
    EXPECT_EQ(item.contents.back().text, "CPU 50%");
}

TEST_F(TarnwickAppTest, ASlowRefreshIsDueEveryTwoMinutesWhileHiddenAndEveryHalfMinuteWhileVisible) {
    const auto app = makeApp();
    dispatch.runMain();
    int slow = 0;
    const auto counted = app->statsManager().storageInfo.willChange([&slow] { ++slow; });
    dispatch.advance(140);
    EXPECT_EQ(slow, 1);
    app->statsManager().popoverDidAppear();
    slow = 0;
    dispatch.advance(65);
    EXPECT_EQ(slow, 2);
}

TEST_F(TarnwickAppTest, BothRefreshesRunAtOnceWhenTheMachineWakes) {
    const auto app = makeApp();
    dispatch.runMain();
    int fast = 0;
    int slow = 0;
    const auto fastCounted = app->statsManager().cpuInfo.willChange([&fast] { ++fast; });
    const auto slowCounted = app->statsManager().storageInfo.willChange([&slow] { ++slow; });
    app->machineDidWake();
    dispatch.runMain();
    EXPECT_EQ(fast, 1);
    EXPECT_EQ(slow, 1);
}

TEST_F(TarnwickAppTest, NothingIsShownAfterTheApplicationHasGone) {
    auto app = makeApp();
    dispatch.runMain();
    app->statsManager().refreshFast();
    settings.setCPUHigh(92);
    app.reset();
    item.contents.clear();
    dispatch.advance(500);
    EXPECT_TRUE(item.contents.empty());
}

// The shortcut.

TEST_F(TarnwickAppTest, RegistersTheStoredShortcutWhenTheLabelAppears) {
    storeShortcut(37, kCommand);
    const auto app = makeApp();
    EXPECT_FALSE(item.contents.empty());
    EXPECT_THAT(hotKeys.calls.all(), ElementsAre("install", "register 37 256"));
    EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::active);
}

TEST_F(TarnwickAppTest, WithoutAStoredShortcutNothingIsRegistered) {
    const auto app = makeApp();
    EXPECT_THAT(hotKeys.calls.all(), ElementsAre("install"));
    EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::inactive);
}

TEST_F(TarnwickAppTest, ALabelThatAppearsAgainChangesNothing) {
    const auto app = makeAppWithShortcut();
    const HotKeyService* before = &app->hotKeyService();
    app->labelDidAppear();
    app->labelDidAppear();
    dispatch.runMain();
    EXPECT_EQ(&app->hotKeyService(), before);
    EXPECT_THAT(hotKeys.calls.all(), IsEmpty());
}

TEST_F(TarnwickAppTest, AnotherKeyIsAppliedOnALaterTurn) {
    const auto app = makeAppWithShortcut();
    settings.setShortcutKeyCode(40);
    EXPECT_THAT(hotKeys.calls.all(), IsEmpty());
    dispatch.runMain();
    EXPECT_THAT(hotKeys.calls.all(), ElementsAre("unregister", "register 40 256"));
    EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::active);
}

TEST_F(TarnwickAppTest, OtherModifiersAreApplied) {
    const auto app = makeAppWithShortcut();
    settings.setShortcutModifiers(kCommand | kShift);
    dispatch.runMain();
    EXPECT_THAT(hotKeys.calls.all(), ElementsAre("unregister", "register 37 768"));
}

TEST_F(TarnwickAppTest, ANewShortcutIsNeverMixedWithTheOldOne) {
    const auto app = makeAppWithShortcut();
    storeShortcut(40, kCommand | kShift);
    dispatch.runMain();
    // Once for the key and once for the modifiers.
    EXPECT_THAT(hotKeys.calls.all(),
                ElementsAre("unregister", "register 40 768", "unregister", "register 40 768"));
    EXPECT_THAT(hotKeys.held(), SizeIs(1));
}

TEST_F(TarnwickAppTest, AClearedShortcutIsGivenBack) {
    const auto app = makeAppWithShortcut();
    storeShortcut(-1, 0);
    dispatch.runMain();
    EXPECT_THAT(hotKeys.calls.all(), ElementsAre("unregister"));
    EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::inactive);
}

TEST_F(TarnwickAppTest, TheSameShortcutStoredAgainIsLeftAlone) {
    const auto app = makeAppWithShortcut();
    storeShortcut(37, kCommand);
    settings.setCPUHigh(91);
    settings.setShortcutRegistrationState(RegistrationState::active);
    dispatch.runMain();
    EXPECT_THAT(hotKeys.calls.all(), IsEmpty());
}

TEST_F(TarnwickAppTest, WhatSomebodyElseChangesInTheStoreAppliesAtOnce) {
    const auto app = makeAppWithShortcut();
    cpu.usagePercentage = 55;
    dispatch.advance(12);
    EXPECT_EQ(item.contents.back().tint, Tint::green);
    store.changeFromOutside({{"settings.shortcutKeyCode", std::int64_t{40}},
                             {"settings.cpuModerateThreshold", std::int64_t{40}},
                             {"settings.cpuHighThreshold", 50.5}});
    dispatch.runMain();
    EXPECT_THAT(hotKeys.calls.all(), ElementsAre("unregister", "register 40 256"));
    EXPECT_EQ(item.contents.back().tint, Tint::red);
    store.changeFromOutside({{"settings.menuBarDisplayMode", std::string("iconOnly")}});
    dispatch.runMain();
    EXPECT_EQ(item.contents.back().text, std::nullopt);
}

TEST_F(TarnwickAppTest, TellsThatSomebodyElseHoldsTheShortcut) {
    storeShortcut(37, kCommand);
    hotKeys.registerStatus.queue(platform::hot_key_status::kExists);
    const auto app = makeApp();
    EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::conflict);
    settings.setShortcutKeyCode(40);
    dispatch.runMain();
    EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::active);
}

TEST_F(TarnwickAppTest, ADesktopThatDecidesLateIsAskedAgain) {
    storeShortcut(37, kCommand);
    hotKeys.registerStatus.queue(-1);
    const auto app = makeApp();
    dispatch.runMain();
    EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::failed);
    hotKeys.calls.clear();
    hotKeys.changeRegistration();
    EXPECT_THAT(hotKeys.calls.all(), IsEmpty());
    dispatch.runMain();
    EXPECT_THAT(hotKeys.calls.all(), ElementsAre("register 37 256"));
    EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::active);
}

TEST_F(TarnwickAppTest, ADesktopThatTakesTheShortcutAwayIsBelieved) {
    const auto app = makeAppWithShortcut();
    hotKeys.registerStatus.set(platform::hot_key_status::kExists);
    hotKeys.changeRegistration();
    dispatch.runMain();
    EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::conflict);
    EXPECT_THAT(hotKeys.held(), IsEmpty());
}

TEST_F(TarnwickAppTest, APressOfTheShortcutClicksTheItemOncePerPress) {
    const auto app = makeAppWithShortcut();
    int toggles = 0;
    item.setActions({.toggle = [&] { ++toggles; }});
    hotKeys.press();
    EXPECT_EQ(toggles, 0);
    dispatch.runMain();
    EXPECT_EQ(toggles, 1);
    hotKeys.press();
    dispatch.runMain();
    EXPECT_EQ(toggles, 2);
}

TEST_F(TarnwickAppTest, APressOfTheShortcutIsToldInTheLog) {
    const auto app = makeAppWithShortcut();
    const std::size_t before = log.lines().size();
    hotKeys.press();
    dispatch.runMain();
    auto lines = log.lines();
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(before));
    EXPECT_THAT(lines,
                ElementsAre(Pair(LogLevel::info, "Hot key PRESSED — invoking onTrigger"),
                            Pair(LogLevel::info, "toggleMenuBarPanel() called"),
                            Pair(LogLevel::info, "Found NSStatusBarButton, performing click")));
}

TEST_F(TarnwickAppTest, APressWithoutATrayClicksNoItem) {
    const auto app = makeAppWithShortcut();
    hotKeys.press();
    dispatch.advance(10);
    EXPECT_EQ(item.togglesWithoutTray, 0);
    item.isInTray = false;
    hotKeys.press();
    dispatch.advance(10);
    EXPECT_EQ(item.clicks, 1);
    EXPECT_EQ(item.togglesWithoutTray, 1);
}

TEST_F(TarnwickAppTest, GivesTheShortcutBackAndHearsNothingMoreOnceItHasGone) {
    auto app = makeAppWithShortcut();
    hotKeys.press();
    hotKeys.changeRegistration();
    settings.setShortcutKeyCode(40);
    EXPECT_TRUE(hotKeys.hasRegistrationObserver());
    app.reset();
    EXPECT_THAT(hotKeys.calls.all(), ElementsAre("unregister", "remove"));
    EXPECT_FALSE(hotKeys.hasRegistrationObserver());
    settings.setShortcutKeyCode(41);
    dispatch.advance(10);
    EXPECT_THAT(hotKeys.calls.all(), SizeIs(2));
    EXPECT_EQ(item.clicks, 0);
}

TEST_F(TarnwickAppTest, WhileAShortcutIsRecordedNoneIsHeld) {
    const auto app = makeAppWithShortcut();
    settings.setRecordingShortcut(true);
    dispatch.runMain();
    EXPECT_THAT(hotKeys.held(), IsEmpty());
    // What it has to say meanwhile is said as before.
    EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::active);
    hotKeys.changeRegistration();
    dispatch.runMain();
    EXPECT_THAT(hotKeys.calls.all(), ElementsAre("unregister"));
    settings.setRecordingShortcut(false);
    dispatch.runMain();
    EXPECT_THAT(hotKeys.calls.all(), ElementsAre("unregister", "register 37 256"));
    EXPECT_THAT(hotKeys.held(), SizeIs(1));
}

TEST_F(TarnwickAppTest, WhatWasRecordedIsRegisteredAndNotTheShortcutBeforeIt) {
    const auto app = makeAppWithShortcut();
    settings.setRecordingShortcut(true);
    dispatch.runMain();
    // In the order in which the recorder tells.
    settings.setRecordingShortcut(false);
    settings.setShortcutKeyCode(40);
    dispatch.runMain();
    EXPECT_THAT(hotKeys.calls.all(), ElementsAre("unregister", "register 40 256"));
}

TEST_F(TarnwickAppTest, ASettingsFileThatChangesWhileAShortcutIsRecordedAppliesAfterwards) {
    const auto app = makeAppWithShortcut();
    settings.setRecordingShortcut(true);
    settings.setShortcutKeyCode(40);
    dispatch.runMain();
    EXPECT_THAT(hotKeys.held(), IsEmpty());
    settings.setRecordingShortcut(false);
    dispatch.runMain();
    EXPECT_THAT(hotKeys.calls.all(), ElementsAre("unregister", "register 40 256"));
}

// The settings window and the first launch.

TEST_F(TarnwickAppTest, TheSettingsWindowEditsTheSettingsOfTheApplication) {
    const auto app = makeApp();
    EXPECT_EQ(windows.living(), 0);
    app->showSettingsWindow();
    app->showSettingsWindow();
    EXPECT_EQ(windows.living(), 1);
    EXPECT_THAT(editedSettings, ElementsAre(&settings));
    windows.closeByUser(1);
    app->showSettingsWindow();
    EXPECT_THAT(editedSettings, ElementsAre(&settings, &settings));
}

TEST_F(TarnwickAppTest, TheFirstLaunchOpensTheSettingsWindowAndThenThePanel) {
    const auto app = makeApp();
    std::vector<int> windowsAtTheClick;
    item.setActions({.toggle = [&] { windowsAtTheClick.push_back(windows.living()); }});
    app->appDelegate().applicationDidFinishLaunching();
    EXPECT_EQ(windows.living(), 0);
    dispatch.runMain();
    EXPECT_EQ(windows.living(), 1);
    EXPECT_THAT(windowsAtTheClick, ElementsAre(1));
    dispatch.advance(10);
    EXPECT_EQ(item.clicks, 1);
}

TEST_F(TarnwickAppTest, TheSecondLaunchOpensNeither) {
    settings.setHasPresentedInitialSettings(true);
    const auto app = makeApp();
    app->appDelegate().applicationDidFinishLaunching();
    dispatch.advance(10);
    EXPECT_EQ(windows.living(), 0);
    EXPECT_EQ(item.clicks, 0);
}

TEST_F(TarnwickAppTest, TheFirstLaunchWaitsForAnItemThatIsLate) {
    item.isInTray = false;
    const auto app = makeApp();
    app->appDelegate().applicationDidFinishLaunching();
    dispatch.advance(0.3);
    item.isInTray = true;
    EXPECT_EQ(item.clicks, 0);
    dispatch.advance(0.1);
    EXPECT_EQ(item.clicks, 1);
    dispatch.advance(10);
    EXPECT_EQ(item.clicks, 1);
}

TEST_F(TarnwickAppTest, TheFirstLaunchGivesUpOnAnItemAfterSixAttempts) {
    item.isInTray = false;
    const auto app = makeApp();
    app->appDelegate().applicationDidFinishLaunching();
    dispatch.advance(60);
    int attempts = 0;
    for (const auto& [level, line] : log.lines()) {
        attempts += line == "toggleMenuBarPanel() called" ? 1 : 0;
    }
    EXPECT_EQ(attempts, 6);
    EXPECT_EQ(windows.living(), 1);
}

TEST_F(TarnwickAppTest, AFirstLaunchThatEndsAtOnceOpensNoWindow) {
    auto app = makeApp();
    app->appDelegate().applicationDidFinishLaunching();
    app.reset();
    dispatch.advance(10);
    EXPECT_EQ(windows.living(), 0);
}

}  // namespace
}  // namespace tarnwick
