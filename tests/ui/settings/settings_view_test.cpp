// SPDX-License-Identifier: MIT
#include "ui/settings/settings_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/ui/settings/settings_view_fixture.h"

namespace tarnwick {
namespace {

using platform::DefaultsValue;
using platform::LoginServiceError;
using platform::LoginServiceStatus;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::kCommandFlag;
using testing::kShiftFlag;
using ::testing::Pair;
using ::testing::SizeIs;
using Call = platform::testing::ScriptedLoginService::Call;
using Thumb = DualThresholdSlider::Thumb;

class SettingsViewTest : public testing::SettingsViewFixture {
 protected:
    const ShortcutEditor& editor(const SettingsPage& page) {
        return std::get<ShortcutEditor>(
            std::get<SettingsCard>(page.sections.at(1).content.at(1)).content);
    }
    ShortcutEditor editor() { return editor(view->page(Tab::general)); }
    bool isLoginOn() {
        const SettingsPage page = view->page(Tab::general);
        return std::get<SwitchRow>(
                   std::get<SettingsCard>(page.sections.at(1).content.at(0)).content)
            .isOn;
    }
    ThresholdEditorCard card(JudgedMetric metric) {
        const SettingsPage page = view->page(Tab::customize);
        return std::get<ThresholdEditorCard>(
            page.sections.at(1).content.at(static_cast<std::size_t>(metric)));
    }
    /// What was stored since.
    auto writes() {
        auto all = store.writes();
        all.erase(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(seen));
        return all;
    }
    void forgetWrites() { seen = store.writes().size(); }

    std::size_t seen = 0;
};

TEST_F(SettingsViewTest, SaysAboveAllElseWhatIsToBeSaidOfTheItemWhileItIsTrue) {
    platform::StatusItemNotice notice;
    SettingsViewEnvironment withNotice = environment();
    withNotice.itemNotice = &notice;
    const SettingsPage without = view->page(Tab::general);
    view = std::make_unique<SettingsView>(settings, withNotice);
    const auto said = [](const SettingsPage& page) {
        return std::get<ItemNotice>(
                   std::get<SettingsCard>(page.sections.at(0).content.at(0)).content)
            .text;
    };
    watch();
    EXPECT_EQ(said(view->page(Tab::general)), "");
    EXPECT_EQ(view->page(Tab::general).sections.size(), without.sections.size() + 1);
    EXPECT_EQ(view->page(Tab::general).sections.at(1), without.sections.at(0));
    notice.text.set("no tray");
    dispatch.runMain();
    ASSERT_EQ(announced.size(), 1U);
    EXPECT_EQ(said(announced.back().page), "no tray");
    notice.text.set({});
    dispatch.runMain();
    EXPECT_EQ(said(announced.back().page), "");
    view.reset();
}

TEST_F(SettingsViewTest, HasATipAboutTheExamplesOfShortcuts) {
    EXPECT_EQ(editor().tip, "");
    SettingsViewEnvironment withTip = environment();
    withTip.shortcutTip = "a tip";
    view = std::make_unique<SettingsView>(settings, withTip);
    EXPECT_EQ(editor().tip, "a tip");
}

TEST(Tabs, AreThreeInTheirOrder) {
    ASSERT_EQ(kTabs.size(), 3U);
    EXPECT_EQ(kTabs[0].tab, Tab::general);
    EXPECT_EQ(kTabs[0].label, "General");
    EXPECT_EQ(kTabs[0].icon, "gearshape");
    EXPECT_EQ(kTabs[1].tab, Tab::customize);
    EXPECT_EQ(kTabs[1].label, "Customize");
    EXPECT_EQ(kTabs[1].icon, "dial.high");
    EXPECT_EQ(kTabs[2].tab, Tab::about);
    EXPECT_EQ(kTabs[2].label, "About");
    EXPECT_EQ(kTabs[2].icon, "info.circle");
}

TEST_F(SettingsViewTest, StartsOnTheGeneralTabWithoutAMessage) {
    EXPECT_EQ(view->selectedTab(), Tab::general);
    EXPECT_EQ(view->content().page, view->page(Tab::general));
    EXPECT_EQ(view->shortcutValidationMessage(), std::nullopt);
    EXPECT_EQ(&view->settings(), &settings);
}

TEST_F(SettingsViewTest, ShowsTheTabThatIsSelected) {
    watch();
    view->selectTab(Tab::about);
    dispatch.runMain();
    ASSERT_THAT(announced, SizeIs(1));
    EXPECT_EQ(announced[0].tab, Tab::about);
    EXPECT_EQ(announced[0].page, view->page(Tab::about));
}

TEST_F(SettingsViewTest, ANewViewStartsAfresh) {
    view->selectTab(Tab::customize);
    view->shortcutField().mouseDown();
    view->shortcutField().keyDown(40, 0);
    EXPECT_NE(view->shortcutValidationMessage(), std::nullopt);
    view = std::make_unique<SettingsView>(settings, environment());
    EXPECT_EQ(view->selectedTab(), Tab::general);
    EXPECT_EQ(view->shortcutValidationMessage(), std::nullopt);
}

TEST_F(SettingsViewTest, OpeningItStoresAndRegistersNothing) {
    loginService.clearCalls();
    const auto other = std::make_unique<SettingsView>(settings, environment());
    dispatch.runMain();
    EXPECT_THAT(writes(), IsEmpty());
    EXPECT_THAT(loginService.calls(), IsEmpty());
}

TEST_F(SettingsViewTest, ADisplayModeIsStoredAtOnce) {
    view->selectDisplayMode(MenuBarDisplayMode::iconOnly);
    EXPECT_THAT(writes(), ElementsAre(Pair("settings.menuBarDisplayMode",
                                           DefaultsValue(std::string("iconOnly")))));
    view->selectDisplayMode(MenuBarDisplayMode::advanced);
    EXPECT_EQ(settings.menuBarDisplayModeRawValue(), "advanced");
}

TEST_F(SettingsViewTest, TheSelectedDisplayModeChangesNothing) {
    view->selectDisplayMode(MenuBarDisplayMode::advanced);
    settings.setMenuBarDisplayMode(MenuBarDisplayMode::iconOnly);
    forgetWrites();
    view->selectDisplayMode(MenuBarDisplayMode::iconOnly);
    EXPECT_THAT(writes(), IsEmpty());
}

TEST_F(SettingsViewTest, ASwitchIsStoredAtOnce) {
    view->setSwitch(SettingsSwitch::remindRestartAfterWeek, true);
    EXPECT_THAT(writes(),
                ElementsAre(Pair("settings.remindRestartAfterWeek", DefaultsValue(true))));
    view->setSwitch(SettingsSwitch::remindRestartAfterWeek, false);
    EXPECT_FALSE(settings.remindRestartAfterWeek());
    EXPECT_FALSE(settings.launchOnLogin());
}

TEST_F(SettingsViewTest, APressOfASwitchCountsFromWhatIsStored) {
    for (const SettingsSwitch each :
         {SettingsSwitch::launchOnLogin, SettingsSwitch::remindRestartAfterWeek}) {
        const auto isOn = [&] {
            return each == SettingsSwitch::launchOnLogin ? settings.launchOnLogin()
                                                         : settings.remindRestartAfterWeek();
        };
        view->toggleSwitch(each);
        EXPECT_TRUE(isOn());
        // Before anything has followed from the first press.
        view->toggleSwitch(each);
        EXPECT_FALSE(isOn());
    }
}

TEST_F(SettingsViewTest, LaunchOnLoginRegistersTheProgramAndRemovesIt) {
    loginService.clearCalls();
    view->setSwitch(SettingsSwitch::launchOnLogin, true);
    EXPECT_THAT(loginService.calls(), ElementsAre(Call::registerService));
    dispatch.runMain();
    EXPECT_THAT(loginService.calls(), ElementsAre(Call::registerService));
    EXPECT_TRUE(isLoginOn());
    view->setSwitch(SettingsSwitch::launchOnLogin, false);
    dispatch.runMain();
    EXPECT_THAT(loginService.calls(), ElementsAre(Call::registerService, Call::unregisterService));
    EXPECT_FALSE(isLoginOn());
}

TEST_F(SettingsViewTest, AnEqualValueOfLaunchOnLoginIsNoChange) {
    loginService.clearCalls();
    view->setSwitch(SettingsSwitch::launchOnLogin, false);
    dispatch.runMain();
    EXPECT_THAT(loginService.calls(), IsEmpty());
}

TEST_F(SettingsViewTest, LaunchOnLoginThatChangesElsewhereIsFollowed) {
    loginService.clearCalls();
    settings.setLaunchOnLogin(true);
    EXPECT_THAT(loginService.calls(), IsEmpty());
    dispatch.runMain();
    EXPECT_THAT(loginService.calls(), ElementsAre(Call::registerService));
    EXPECT_TRUE(isLoginOn());
}

TEST_F(SettingsViewTest, ARefusedLoginItemSnapsBack) {
    loginService.setRegisterError(LoginServiceError{"not now"});
    loginService.clearCalls();
    watch();
    view->setSwitch(SettingsSwitch::launchOnLogin, true);
    dispatch.runMain();
    EXPECT_FALSE(settings.launchOnLogin());
    EXPECT_FALSE(isLoginOn());
    // Going back is a change, too.
    EXPECT_THAT(loginService.calls(),
                ElementsAre(Call::registerService, Call::status, Call::unregisterService));
}

TEST_F(SettingsViewTest, ALoginItemThatCannotBeRemovedSnapsBack) {
    loginService.setStatus(LoginServiceStatus::enabled);
    settings.setLaunchOnLogin(true);
    dispatch.runMain();
    loginService.setUnregisterError(LoginServiceError{"not now"});
    view->setSwitch(SettingsSwitch::launchOnLogin, false);
    EXPECT_TRUE(settings.launchOnLogin());
    EXPECT_TRUE(isLoginOn());
}

TEST_F(SettingsViewTest, NothingIsFollowedOnceTheViewHasGone) {
    loginService.clearCalls();
    settings.setLaunchOnLogin(true);
    view.reset();
    dispatch.runMain();
    settings.setLaunchOnLogin(false);
    dispatch.runMain();
    EXPECT_THAT(loginService.calls(), IsEmpty());
}

TEST_F(SettingsViewTest, ARecordedShortcutIsStored) {
    view->shortcutField().mouseDown();
    view->shortcutField().keyDown(40, kCommandFlag | kShiftFlag);
    EXPECT_THAT(
        writes(),
        ElementsAre(Pair("settings.shortcutKeyCode", DefaultsValue(std::int64_t{40})),
                    Pair("settings.shortcutModifiers", DefaultsValue(kCommandFlag | kShiftFlag))));
    dispatch.runMain();
    EXPECT_EQ(editor().field, (ShortcutFieldText{"⇧⌘K", false}));
}

TEST_F(SettingsViewTest, SaysWhileItRecordsSoThatNoShortcutTakesTheKeys) {
    view->shortcutField().mouseDown();
    EXPECT_TRUE(settings.isRecordingShortcut());
    view->shortcutField().keyDown(53, 0);
    EXPECT_FALSE(settings.isRecordingShortcut());
    // Also when the window goes in the middle of it.
    view->shortcutField().mouseDown();
    view.reset();
    EXPECT_FALSE(settings.isRecordingShortcut());
}

TEST_F(SettingsViewTest, SaysWhereTheItemHasNoRoomForItsText) {
    const auto toolTips = [this] {
        std::vector<std::string_view> found;
        const SettingsPage page = view->page(Tab::general);
        for (const SettingsItem& item : page.sections[0].content) {
            found.push_back(std::get<DisplayModeCard>(item).toolTip);
        }
        return found;
    };
    EXPECT_THAT(toolTips(), ElementsAre("", ""));
    bool isIconOnly = true;
    SettingsViewEnvironment narrow = environment();
    narrow.itemIsIconOnly = [&] { return isIconOnly; };
    view = std::make_unique<SettingsView>(settings, narrow);
    EXPECT_THAT(toolTips(),
                ElementsAre("", "This panel shows icons only; the text is in the tool tip."));
    // The tray's program may change.
    isIconOnly = false;
    EXPECT_THAT(toolTips(), ElementsAre("", ""));
}

TEST_F(SettingsViewTest, TellsTheKeysThatTheDesktopHasInPlaceOfTheStoredOnes) {
    storeShortcut(37, kCommandFlag);
    settings.setShortcutRegistrationState(RegistrationState::active);
    SettingsViewEnvironment changed = environment();
    changed.otherShortcutKeys = [] { return "Meta+K"; };
    view = std::make_unique<SettingsView>(settings, changed);
    EXPECT_EQ(editor().lines[0].text, "Shortcut active: Meta+K");
}

TEST_F(SettingsViewTest, TheFieldSaysWhatItWaitsFor) {
    EXPECT_EQ(editor().field, (ShortcutFieldText{"Click to record", true}));
    watch();
    view->shortcutField().mouseDown();
    dispatch.runMain();
    ASSERT_THAT(announced, SizeIs(1));
    EXPECT_EQ(editor(announced[0].page).field, (ShortcutFieldText{"Press ⌘ + key…", true}));
}

TEST_F(SettingsViewTest, ARejectedKeyLeavesTheStoredShortcut) {
    storeShortcut(37, kCommandFlag);
    settings.setShortcutRegistrationState(RegistrationState::active);
    dispatch.runMain();
    forgetWrites();
    view->shortcutField().mouseDown();
    view->shortcutField().keyDown(40, 0);
    EXPECT_EQ(view->shortcutValidationMessage(), "Shortcut must include Command.");
    EXPECT_THAT(writes(), IsEmpty());
    const ShortcutEditor shown = editor();
    ASSERT_THAT(shown.lines, SizeIs(2));
    EXPECT_EQ(shown.lines[0].text, "Shortcut must include Command.");
    EXPECT_EQ(shown.lines[1].text, "Shortcut active: ⌘L");
    view->shortcutField().keyDown(53, 0);
    EXPECT_EQ(view->shortcutValidationMessage(), std::nullopt);
    EXPECT_THAT(editor().lines, SizeIs(1));
}

TEST_F(SettingsViewTest, AMessageIsAnnounced) {
    view->shortcutField().mouseDown();
    dispatch.runMain();
    watch();
    view->shortcutField().flagsChanged(0x80000);
    dispatch.runMain();
    ASSERT_THAT(announced, SizeIs(1));
    EXPECT_EQ(editor(announced[0].page).lines.at(0).text, "Shortcut must include Command.");
}

TEST_F(SettingsViewTest, AConflictIsTold) {
    storeShortcut(37, kCommandFlag);
    dispatch.runMain();
    watch();
    settings.setShortcutRegistrationState(RegistrationState::conflict);
    dispatch.runMain();
    ASSERT_THAT(announced, SizeIs(1));
    ASSERT_THAT(editor(announced[0].page).lines, SizeIs(1));
    EXPECT_EQ(editor(announced[0].page).lines[0].text,
              "This shortcut is already in use. Choose a different combination.");
}

TEST_F(SettingsViewTest, ThereIsSomethingToClearWhileAShortcutIsStored) {
    EXPECT_FALSE(editor().hasClear);
    storeShortcut(37, kCommandFlag);
    EXPECT_TRUE(editor().hasClear);
    storeShortcut(0, 0);
    EXPECT_TRUE(editor().hasClear);
    storeShortcut(-1, kCommandFlag);
    EXPECT_FALSE(editor().hasClear);
}

TEST_F(SettingsViewTest, ClearForgetsTheShortcutItsStateAndTheMessage) {
    storeShortcut(37, kCommandFlag);
    settings.setShortcutRegistrationState(RegistrationState::conflict);
    view->shortcutField().mouseDown();
    view->shortcutField().keyDown(40, 0);
    forgetWrites();
    view->clearShortcut();
    EXPECT_THAT(writes(),
                ElementsAre(Pair("settings.shortcutKeyCode", DefaultsValue(std::int64_t{-1})),
                            Pair("settings.shortcutModifiers", DefaultsValue(std::int64_t{0}))));
    EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::inactive);
    EXPECT_EQ(view->shortcutValidationMessage(), std::nullopt);
    EXPECT_FALSE(editor().hasClear);
    EXPECT_THAT(editor().lines, IsEmpty());
}

TEST_F(SettingsViewTest, AShortcutThatIsStoredElsewhereIsShown) {
    watch();
    storeShortcut(37, kCommandFlag);
    dispatch.runMain();
    ASSERT_THAT(announced, SizeIs(1));
    EXPECT_EQ(editor(announced[0].page).field, (ShortcutFieldText{"⌘L", false}));
    EXPECT_TRUE(editor(announced[0].page).hasClear);
}

TEST_F(SettingsViewTest, EachSliderEditsItsOwnThresholds) {
    struct Row {
        JudgedMetric metric;
        const char* title;
        double (UserSettings::*normal)() const;
        double (UserSettings::*high)() const;
    };
    const Row rows[] = {
        {JudgedMetric::cpu, "CPU Usage", &UserSettings::cpuNormal, &UserSettings::cpuHigh},
        {JudgedMetric::gpu, "GPU Usage", &UserSettings::gpuNormal, &UserSettings::gpuHigh},
        {JudgedMetric::memory, "Memory Usage", &UserSettings::memoryNormal,
         &UserSettings::memoryHigh},
        {JudgedMetric::storage, "Storage Usage", &UserSettings::storageNormal,
         &UserSettings::storageHigh},
    };
    for (const Row& row : rows) {
        forgetWrites();
        DualThresholdSlider& slider = view->slider(row.metric);
        EXPECT_EQ(slider.title(), row.title);
        EXPECT_EQ(slider.value(Thumb::normal), (settings.*row.normal)());
        EXPECT_EQ(slider.value(Thumb::high), (settings.*row.high)());
        slider.setValue(Thumb::normal, 66);
        slider.setValue(Thumb::high, 77);
        EXPECT_EQ((settings.*row.normal)(), 66);
        EXPECT_EQ((settings.*row.high)(), 77);
        EXPECT_THAT(writes(), SizeIs(2));
        EXPECT_EQ(card(row.metric).normal, 66);
        EXPECT_EQ(card(row.metric).high, 77);
        EXPECT_TRUE(slider.keyboardNavigationEnabled());
    }
}

TEST_F(SettingsViewTest, TheStorageCardOffersNothingBelowHalfFull) {
    DualThresholdSlider& slider = view->slider(JudgedMetric::storage);
    slider.drag(Thumb::normal, 0, 220);
    slider.drag(Thumb::high, 0, 220);
    EXPECT_EQ(settings.storageNormal(), 50);
    EXPECT_EQ(settings.storageHigh(), 51);
}

TEST_F(SettingsViewTest, ResetRestoresTheThresholdsAlone) {
    settings.setMenuBarDisplayMode(MenuBarDisplayMode::iconOnly);
    settings.setRemindRestartAfterWeek(true);
    loginService.setStatus(LoginServiceStatus::enabled);
    settings.setLaunchOnLogin(true);
    storeShortcut(40, kCommandFlag);
    for (const ThresholdEditor& editor : kThresholdEditors) {
        view->slider(editor.metric).setValue(Thumb::normal, 60);
        view->slider(editor.metric).setValue(Thumb::high, 61);
    }
    forgetWrites();
    view->resetThresholds();
    EXPECT_THAT(writes(), SizeIs(8));
    EXPECT_EQ(settings.thresholds(), MetricThresholds());
    EXPECT_EQ(settings.menuBarDisplayMode(), MenuBarDisplayMode::iconOnly);
    EXPECT_TRUE(settings.remindRestartAfterWeek());
    EXPECT_TRUE(settings.launchOnLogin());
    EXPECT_EQ(settings.shortcutKeyCode(), 40);
    EXPECT_EQ(settings.shortcutModifiers(), kCommandFlag);
}

TEST_F(SettingsViewTest, LinksLeadToTheMaker) {
    view->openMakerSite();
    EXPECT_THAT(opened, ElementsAre(std::string(kMakerAddress)));
    SettingsViewEnvironment without{dispatch, layout};
    SettingsView(settings, without).openMakerSite();
    EXPECT_THAT(opened, SizeIs(1));
}

TEST_F(SettingsViewTest, HoweverMuchChangesItIsAnnouncedOnceATurn) {
    view->selectTab(Tab::customize);
    dispatch.runMain();
    watch();
    DualThresholdSlider& slider = view->slider(JudgedMetric::cpu);
    forgetWrites();
    for (int change = 0; change < 500; ++change) {
        slider.drag(Thumb::normal, 50 + change % 100, 220);
        EXPECT_LE(dispatch.mainPending(), 1U);
    }
    EXPECT_THAT(announced, IsEmpty());
    // Each change is stored for good before the next one.
    EXPECT_THAT(writes(), SizeIs(500));
    dispatch.runMain();
    ASSERT_THAT(announced, SizeIs(1));
    EXPECT_EQ(announced[0], view->content());
}

TEST_F(SettingsViewTest, WhatLooksTheSameIsNotAnnounced) {
    watch();
    settings.setCPUNormal(33);
    settings.setHasPresentedInitialSettings(true);
    dispatch.runMain();
    EXPECT_THAT(announced, IsEmpty());
    EXPECT_EQ(dispatch.mainPending(), 0U);
}

}  // namespace
}  // namespace tarnwick
