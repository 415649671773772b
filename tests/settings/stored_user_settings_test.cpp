// SPDX-License-Identifier: MIT
// The settings over each kind of store, closed and opened again as by a new launch.
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>

#include "platform/linux/settings/json_user_defaults.h"
#include "platform/testing/manual_dispatch.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/scripted_login_service.h"
#include "settings/user_settings.h"
#include "tests/platform/linux/temporary_folder.h"

namespace tarnwick {
namespace {

using platform::LoginServiceStatus;
using platform::UserDefaults;
using platform::testing::ScriptedLoginService;

/// A place where a store outlives its reader.
class Place {
 public:
    virtual ~Place() = default;
    virtual UserDefaults& open() = 0;
};

class MemoryPlace final : public Place {
 public:
    UserDefaults& open() override { return store_; }

 private:
    platform::testing::MemoryUserDefaults store_;
};

class FilePlace final : public Place {
 public:
    UserDefaults& open() override {
        dispatch_.runMain();
        store_ = std::make_unique<platform::JsonUserDefaults>(
            folder_ / "settings.json", dispatch_,
            [](std::string_view line) { ADD_FAILURE() << line; });
        dispatch_.runMain();
        return *store_;
    }

 private:
    tarnwick::testing::TemporaryFolder folder_;
    platform::testing::ManualDispatch dispatch_;
    std::unique_ptr<UserDefaults> store_;
};

struct Kind {
    const char* name;
    std::function<std::unique_ptr<Place>()> make;
};

class StoredUserSettings : public ::testing::TestWithParam<Kind> {
 protected:
    /// The program starts: the store is opened and the settings are made on it.
    UserSettings& launch() {
        settings.reset();
        store = &place->open();
        settings = std::make_unique<UserSettings>(*store, service);
        return *settings;
    }

    std::unique_ptr<Place> place = GetParam().make();
    UserDefaults* store = &place->open();
    ScriptedLoginService service;
    std::unique_ptr<UserSettings> settings;
};

TEST_P(StoredUserSettings, AFreshStoreReadsTheDefaultsAndStaysEmpty) {
    launch();
    EXPECT_EQ(settings->menuBarDisplayModeRawValue(), "advanced");
    EXPECT_EQ(settings->thresholds(), (MetricThresholds{80, 90, 90, 95, 80, 90, 80, 90}));
    EXPECT_FALSE(settings->launchOnLogin());
    EXPECT_FALSE(settings->remindRestartAfterWeek());
    EXPECT_EQ(settings->shortcutKeyCode(), -1);
    EXPECT_EQ(settings->shortcutModifiers(), 0);
    EXPECT_FALSE(settings->hasPresentedInitialSettings());
    for (const char* key :
         {"settings.menuBarDisplayMode", "settings.cpuModerateThreshold",
          "settings.cpuHighThreshold", "settings.gpuModerateThreshold", "settings.gpuHighThreshold",
          "settings.memoryModerateThreshold", "settings.memoryHighThreshold",
          "settings.storageModerateThreshold", "settings.storageCriticalThreshold",
          "settings.launchOnLogin", "settings.remindRestartAfterWeek", "settings.shortcutKeyCode",
          "settings.shortcutModifiers", "settings.hasPresentedInitialSettings"}) {
        EXPECT_FALSE(store->contains(key)) << key;
    }
}

TEST_P(StoredUserSettings, EveryPropertyIsThereAfterTheNextLaunch) {
    launch();
    settings->setMenuBarDisplayMode(MenuBarDisplayMode::iconOnly);
    settings->setCPUNormal(11);
    settings->setCPUHigh(22.5);
    settings->setGPUNormal(33);
    settings->setGPUHigh(44);
    settings->setMemoryNormal(55);
    settings->setMemoryHigh(66);
    settings->setStorageNormal(77);
    settings->setStorageHigh(88);
    settings->setRemindRestartAfterWeek(true);
    settings->setShortcutKeyCode(12);
    settings->setShortcutModifiers(0x60000);
    settings->setHasPresentedInitialSettings(true);
    settings->setLaunchOnLogin(true);
    service.setStatus(LoginServiceStatus::enabled);

    launch();
    EXPECT_EQ(settings->menuBarDisplayMode(), MenuBarDisplayMode::iconOnly);
    EXPECT_EQ(settings->thresholds(), (MetricThresholds{11, 22.5, 33, 44, 55, 66, 77, 88}));
    EXPECT_TRUE(settings->launchOnLogin());
    EXPECT_TRUE(settings->remindRestartAfterWeek());
    EXPECT_EQ(settings->shortcutKeyCode(), 12);
    EXPECT_EQ(settings->shortcutModifiers(), 0x60000);
    EXPECT_TRUE(settings->hasPresentedInitialSettings());
}

TEST_P(StoredUserSettings, ThresholdsAreStoredAsWrittenAndNormalisedOnRead) {
    launch();
    settings->setCPUNormal(95);
    settings->setCPUHigh(90);
    settings->setStorageNormal(100);
    settings->setStorageHigh(100);
    launch();
    EXPECT_EQ(settings->thresholds(), (MetricThresholds{95, 96, 90, 95, 80, 90, 99, 100}));
    EXPECT_EQ(store->number("settings.cpuModerateThreshold"), 95);
    EXPECT_EQ(store->number("settings.cpuHighThreshold"), 90);
    EXPECT_EQ(store->number("settings.storageModerateThreshold"), 100);
}

TEST_P(StoredUserSettings, AWriteAnnouncesWhileTheStoreHoldsTheOldValue) {
    launch();
    settings->setCPUHigh(70);
    double seen = 0;
    const auto observation = settings->objectWillChange(
        [&] { seen = store->number("settings.cpuHighThreshold").value(); });
    settings->setCPUHigh(71);
    EXPECT_EQ(seen, 70);
    EXPECT_EQ(store->number("settings.cpuHighThreshold"), 71);
}

TEST_P(StoredUserSettings, AnUnknownDisplayModeIsAdvancedAndStays) {
    store->set("settings.menuBarDisplayMode", std::string("ICONONLY"));
    launch();
    EXPECT_EQ(settings->menuBarDisplayMode(), MenuBarDisplayMode::advanced);
    EXPECT_EQ(store->text("settings.menuBarDisplayMode"), "ICONONLY");
}

TEST_P(StoredUserSettings, AValueOfAnotherTypeReadsAsTheDefaultAndStays) {
    store->set("settings.cpuHighThreshold", std::string("70"));
    store->set("settings.remindRestartAfterWeek", std::int64_t{1});
    launch();
    EXPECT_EQ(settings->cpuHigh(), 90);
    EXPECT_FALSE(settings->remindRestartAfterWeek());
    launch();
    EXPECT_EQ(store->text("settings.cpuHighThreshold"), "70");
    EXPECT_EQ(store->integer("settings.remindRestartAfterWeek"), 1);
}

TEST_P(StoredUserSettings, TheFirstLaunchPresentsOnceAndTheSecondGainsTheShortcut) {
    EXPECT_TRUE(launch().presentInitialSettingsIfNeeded());
    EXPECT_EQ(store->text("settings.menuBarDisplayMode"), "advanced");
    EXPECT_FALSE(settings->presentInitialSettingsIfNeeded());
    EXPECT_EQ(settings->shortcutKeyCode(), -1);

    EXPECT_FALSE(launch().presentInitialSettingsIfNeeded());
    EXPECT_EQ(settings->shortcutKeyCode(), 37);
    EXPECT_EQ(settings->shortcutModifiers(), 1048576);
}

TEST_P(StoredUserSettings, AShortcutClearedDuringTheFirstLaunchStaysCleared) {
    launch().presentInitialSettingsIfNeeded();
    settings->setShortcutKeyCode(-1);
    launch();
    EXPECT_EQ(settings->shortcutKeyCode(), -1);
    EXPECT_FALSE(store->contains("settings.shortcutModifiers"));
}

TEST_P(StoredUserSettings, TheLoginPreferenceFollowsTheSystemAtEachLaunch) {
    service.setStatus(LoginServiceStatus::enabled);
    EXPECT_TRUE(launch().launchOnLogin());
    service.setStatus(LoginServiceStatus::requiresApproval);
    EXPECT_FALSE(launch().launchOnLogin());
    EXPECT_EQ(store->boolean("settings.launchOnLogin"), false);
}

TEST_P(StoredUserSettings, ResetLeavesEverythingElse) {
    launch();
    settings->setMenuBarDisplayMode(MenuBarDisplayMode::iconOnly);
    settings->setShortcutKeyCode(12);
    settings->setGPUHigh(50);
    settings->resetThresholdsToDefaults();
    launch();
    EXPECT_EQ(settings->menuBarDisplayMode(), MenuBarDisplayMode::iconOnly);
    EXPECT_EQ(settings->shortcutKeyCode(), 12);
    EXPECT_EQ(store->number("settings.gpuHighThreshold"), 95);
    EXPECT_EQ(store->number("settings.cpuModerateThreshold"), 80);
}

TEST_P(StoredUserSettings, TheRegistrationStateIsForgotten) {
    launch().setShortcutRegistrationState(RegistrationState::active);
    EXPECT_EQ(launch().shortcutRegistrationState(), RegistrationState::inactive);
}

INSTANTIATE_TEST_SUITE_P(
    Stores, StoredUserSettings,
    ::testing::Values(Kind{"InMemory", [] { return std::make_unique<MemoryPlace>(); }},
                      Kind{"InAFile", [] { return std::make_unique<FilePlace>(); }}),
    [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace tarnwick
