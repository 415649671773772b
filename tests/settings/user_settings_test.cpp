// SPDX-License-Identifier: MIT
#include "settings/user_settings.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/scripted_login_service.h"

namespace tarnwick {
namespace {

using platform::DefaultsValue;
using platform::testing::MemoryUserDefaults;
using platform::testing::ScriptedLoginService;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

class UserSettingsTest : public ::testing::Test {
 protected:
    DefaultsValue stored(const std::string& key) { return store.values().at(key); }

    MemoryUserDefaults store;
    ScriptedLoginService service;
};

TEST_F(UserSettingsTest, WhatSomebodyElseChangesInTheStoreIsAnnouncedOnce) {
    UserSettings settings(store, service);
    int announced = 0;
    const auto observation = settings.objectWillChange([&] { ++announced; });
    store.changeFromOutside(
        {{"settings.cpuModerateThreshold", std::int64_t{40}}, {"settings.cpuHighThreshold", 50.0}});
    EXPECT_EQ(announced, 1);
    EXPECT_EQ(settings.thresholds().cpuNormal, 40);
    EXPECT_EQ(settings.thresholds().cpuHigh, 50);
}

TEST_F(UserSettingsTest, SettingsThatHaveGoneHearNothingOfTheStore) {
    { const UserSettings settings(store, service); }
    store.changeFromOutside({{"settings.launchOnLogin", true}});
    EXPECT_THAT(service.calls(), ElementsAre(ScriptedLoginService::Call::status));
}

/// One persisted property, seen from outside: its key, its default, another value, get and set.
struct PropertyRow {
    const char* name;
    const char* key;
    DefaultsValue fallback;
    DefaultsValue other;
    std::function<DefaultsValue(const UserSettings&)> get;
    std::function<void(UserSettings&, const DefaultsValue&)> set;
};

template <class T>
PropertyRow row(const char* name, const char* key, T fallback, T other,
                T (UserSettings::*get)() const, void (UserSettings::*set)(T)) {
    return {name,
            key,
            fallback,
            other,
            [get](const UserSettings& settings) { return DefaultsValue((settings.*get)()); },
            [set](UserSettings& settings, const DefaultsValue& value) {
                (settings.*set)(std::get<T>(value));
            }};
}

std::vector<PropertyRow> properties() {
    using S = UserSettings;
    std::vector<PropertyRow> rows;
    rows.push_back(
        {"menuBarDisplayMode", "settings.menuBarDisplayMode", std::string("advanced"),
         std::string("iconOnly"),
         [](const S& settings) { return DefaultsValue(settings.menuBarDisplayModeRawValue()); },
         [](S& settings, const DefaultsValue& value) {
             settings.setMenuBarDisplayModeRawValue(std::get<std::string>(value));
         }});
    rows.push_back(row<double>("cpuNormal", "settings.cpuModerateThreshold", 80, 11, &S::cpuNormal,
                               &S::setCPUNormal));
    rows.push_back(
        row<double>("cpuHigh", "settings.cpuHighThreshold", 90, 22, &S::cpuHigh, &S::setCPUHigh));
    rows.push_back(row<double>("gpuNormal", "settings.gpuModerateThreshold", 90, 33, &S::gpuNormal,
                               &S::setGPUNormal));
    rows.push_back(
        row<double>("gpuHigh", "settings.gpuHighThreshold", 95, 44, &S::gpuHigh, &S::setGPUHigh));
    rows.push_back(row<double>("memoryNormal", "settings.memoryModerateThreshold", 80, 55,
                               &S::memoryNormal, &S::setMemoryNormal));
    rows.push_back(row<double>("memoryHigh", "settings.memoryHighThreshold", 90, 66, &S::memoryHigh,
                               &S::setMemoryHigh));
    rows.push_back(row<double>("storageNormal", "settings.storageModerateThreshold", 80, 77,
                               &S::storageNormal, &S::setStorageNormal));
    rows.push_back(row<double>("storageHigh", "settings.storageCriticalThreshold", 90, 88.5,
                               &S::storageHigh, &S::setStorageHigh));
    rows.push_back(row<bool>("launchOnLogin", "settings.launchOnLogin", false, true,
                             &S::launchOnLogin, &S::setLaunchOnLogin));
    rows.push_back(row<bool>("remindRestartAfterWeek", "settings.remindRestartAfterWeek", false,
                             true, &S::remindRestartAfterWeek, &S::setRemindRestartAfterWeek));
    rows.push_back(row<std::int64_t>("shortcutKeyCode", "settings.shortcutKeyCode", -1, 37,
                                     &S::shortcutKeyCode, &S::setShortcutKeyCode));
    rows.push_back(row<std::int64_t>("shortcutModifiers", "settings.shortcutModifiers", 0, 0x1E0100,
                                     &S::shortcutModifiers, &S::setShortcutModifiers));
    rows.push_back(row<bool>("hasPresentedInitialSettings", "settings.hasPresentedInitialSettings",
                             false, true, &S::hasPresentedInitialSettings,
                             &S::setHasPresentedInitialSettings));
    return rows;
}

class UserSettingsProperty : public UserSettingsTest,
                             public ::testing::WithParamInterface<PropertyRow> {
 protected:
    const PropertyRow& property = GetParam();
    UserSettings settings{store, service};
};

TEST_P(UserSettingsProperty, ReadsItsDefaultWhileTheKeyIsAbsent) {
    EXPECT_EQ(property.get(settings), property.fallback);
}

TEST_P(UserSettingsProperty, AReadWritesNothing) {
    property.get(settings);
    EXPECT_THAT(store.writes(), IsEmpty());
}

TEST_P(UserSettingsProperty, AWriteGoesStraightToTheStoreUnderItsKeyAlone) {
    property.set(settings, property.other);
    EXPECT_THAT(store.writes(), ElementsAre(Pair(property.key, property.other)));
    EXPECT_EQ(property.get(settings), property.other);
}

TEST_P(UserSettingsProperty, AReadGoesThroughToTheStore) {
    store.set(property.key, property.other);
    EXPECT_EQ(property.get(settings), property.other);
    store.set(property.key, property.fallback);
    EXPECT_EQ(property.get(settings), property.fallback);
}

TEST_P(UserSettingsProperty, AWriteAnnouncesOnceBeforeTheStoreHoldsTheNewValue) {
    int announced = 0;
    bool storedAlready = true;
    DefaultsValue read;
    const auto observation = settings.objectWillChange([&] {
        ++announced;
        storedAlready = store.contains(property.key);
        read = property.get(settings);
    });
    property.set(settings, property.other);
    EXPECT_EQ(announced, 1);
    EXPECT_FALSE(storedAlready);
    EXPECT_EQ(read, property.fallback);
}

TEST_P(UserSettingsProperty, AWriteOfAnEqualValueIsAnnouncedAndStored) {
    property.set(settings, property.other);
    int announced = 0;
    const auto observation = settings.objectWillChange([&] { ++announced; });
    property.set(settings, property.other);
    EXPECT_EQ(announced, 1);
    EXPECT_EQ(store.writes().size(), 2U);
}

TEST_P(UserSettingsProperty, TheDefaultWrittenIsStored) {
    property.set(settings, property.fallback);
    EXPECT_THAT(store.values(), ElementsAre(Pair(property.key, property.fallback)));
}

TEST_P(UserSettingsProperty, AValueOfAnotherTypeReadsAsTheDefaultAndStays) {
    const DefaultsValue strange = platform::Date{12};
    store.set(property.key, strange);
    EXPECT_EQ(property.get(settings), property.fallback);
    EXPECT_EQ(stored(property.key), strange);
    const DefaultsValue text = std::string("1");
    if (property.fallback.index() != text.index()) {
        store.set(property.key, text);
        EXPECT_EQ(property.get(settings), property.fallback);
    } else {
        store.set(property.key, true);
        EXPECT_EQ(property.get(settings), property.fallback);
    }
}

INSTANTIATE_TEST_SUITE_P(Properties, UserSettingsProperty, ::testing::ValuesIn(properties()),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(UserSettingsTest, AFreshStoreReadsTheDefaultsAndStaysEmpty) {
    const UserSettings settings(store, service);
    EXPECT_EQ(settings.menuBarDisplayMode(), MenuBarDisplayMode::advanced);
    EXPECT_EQ(settings.shortcutKeyCode(), -1);
    EXPECT_EQ(settings.shortcutModifiers(), 0);
    EXPECT_EQ(settings.thresholds(), (MetricThresholds{80, 90, 90, 95, 80, 90, 80, 90}));
    EXPECT_THAT(store.writes(), IsEmpty());
}

TEST_F(UserSettingsTest, ThresholdsMadeWithoutAStoreAreTheDefaults) {
    EXPECT_EQ(MetricThresholds{}, UserSettings(store, service).thresholds());
}

TEST_F(UserSettingsTest, TwoReadersOfOneStoreNeverDisagree) {
    UserSettings first(store, service);
    const UserSettings second(store, service);
    first.setMemoryHigh(71);
    EXPECT_EQ(second.memoryHigh(), 71);
    first.setMenuBarDisplayMode(MenuBarDisplayMode::iconOnly);
    EXPECT_EQ(second.menuBarDisplayMode(), MenuBarDisplayMode::iconOnly);
}

TEST_F(UserSettingsTest, AWholeNumberStoredAsAThresholdIsRead) {
    store.set("settings.cpuModerateThreshold", std::int64_t{42});
    EXPECT_EQ(UserSettings(store, service).cpuNormal(), 42);
}

TEST_F(UserSettingsTest, AFractionStoredAsKeyCodeReadsAsTheDefault) {
    store.set("settings.shortcutKeyCode", 3.0);
    EXPECT_EQ(UserSettings(store, service).shortcutKeyCode(), -1);
}

TEST_F(UserSettingsTest, AnIntegerIsNoTruthValue) {
    store.set("settings.remindRestartAfterWeek", std::int64_t{1});
    EXPECT_FALSE(UserSettings(store, service).remindRestartAfterWeek());
}

TEST_F(UserSettingsTest, EveryPossibleShortcutIsKept) {
    UserSettings settings(store, service);
    for (const std::int64_t code :
         {std::int64_t{-1}, std::int64_t{0}, std::int64_t{127}, std::int64_t{4'294'967'295}}) {
        settings.setShortcutKeyCode(code);
        EXPECT_EQ(settings.shortcutKeyCode(), code);
    }
    for (const std::int64_t modifiers :
         {std::int64_t{0}, std::int64_t{0x1E0000}, std::numeric_limits<std::int64_t>::max()}) {
        settings.setShortcutModifiers(modifiers);
        EXPECT_EQ(settings.shortcutModifiers(), modifiers);
    }
}

TEST_F(UserSettingsTest, AnImpossibleStoredShortcutReadsAsTheDefaultAndIsLeftThere) {
    UserSettings settings(store, service);
    for (const std::int64_t code :
         {std::numeric_limits<std::int64_t>::min(), std::int64_t{-2}, std::int64_t{4'294'967'296},
          std::numeric_limits<std::int64_t>::max()}) {
        store.set("settings.shortcutKeyCode", code);
        EXPECT_EQ(settings.shortcutKeyCode(), -1) << code;
        EXPECT_EQ(stored("settings.shortcutKeyCode"), DefaultsValue(code));
    }
    for (const std::int64_t modifiers :
         {std::numeric_limits<std::int64_t>::min(), std::int64_t{-1}}) {
        store.set("settings.shortcutModifiers", modifiers);
        EXPECT_EQ(settings.shortcutModifiers(), 0) << modifiers;
        EXPECT_EQ(stored("settings.shortcutModifiers"), DefaultsValue(modifiers));
    }
}

TEST_F(UserSettingsTest, ManyObserversAreAllCalled) {
    UserSettings settings(store, service);
    int first = 0;
    int second = 0;
    const auto a = settings.objectWillChange([&] { ++first; });
    const auto b = settings.objectWillChange([&] { ++second; });
    settings.setCPUHigh(70);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 1);
}

// The display mode.

TEST_F(UserSettingsTest, TheDisplayModesAreOfferedInOrder) {
    EXPECT_THAT(kMenuBarDisplayModes,
                ElementsAre(MenuBarDisplayMode::iconOnly, MenuBarDisplayMode::advanced));
}

TEST_F(UserSettingsTest, TheDisplayModesHaveTheirRawValues) {
    EXPECT_EQ(rawValue(MenuBarDisplayMode::iconOnly), "iconOnly");
    EXPECT_EQ(rawValue(MenuBarDisplayMode::advanced), "advanced");
    EXPECT_EQ(menuBarDisplayModeFromRawValue("iconOnly"), MenuBarDisplayMode::iconOnly);
    EXPECT_EQ(menuBarDisplayModeFromRawValue("advanced"), MenuBarDisplayMode::advanced);
    EXPECT_EQ(menuBarDisplayModeFromRawValue("other"), std::nullopt);
    EXPECT_EQ(menuBarDisplayModeFromRawValue(""), std::nullopt);
}

TEST_F(UserSettingsTest, StoredIconOnlyIsIconOnly) {
    store.set("settings.menuBarDisplayMode", std::string("iconOnly"));
    EXPECT_EQ(UserSettings(store, service).menuBarDisplayMode(), MenuBarDisplayMode::iconOnly);
}

TEST_F(UserSettingsTest, EveryOtherStoredTextIsAdvancedAndReadAsItStands) {
    UserSettings settings(store, service);
    for (const char* text : {"advanced", "", "ICONONLY", "IconOnly", " iconOnly", "iconOnly ",
                             "iconOnlyx", "icon", "nonsense", "größe"}) {
        store.set("settings.menuBarDisplayMode", std::string(text));
        EXPECT_EQ(settings.menuBarDisplayMode(), MenuBarDisplayMode::advanced) << text;
        EXPECT_EQ(settings.menuBarDisplayModeRawValue(), text);
        EXPECT_EQ(stored("settings.menuBarDisplayMode"), DefaultsValue(std::string(text)));
    }
}

TEST_F(UserSettingsTest, SettingTheDisplayModeWritesItsRawValue) {
    UserSettings settings(store, service);
    int announced = 0;
    const auto observation = settings.objectWillChange([&] { ++announced; });
    settings.setMenuBarDisplayMode(MenuBarDisplayMode::iconOnly);
    EXPECT_EQ(stored("settings.menuBarDisplayMode"), DefaultsValue(std::string("iconOnly")));
    settings.setMenuBarDisplayMode(MenuBarDisplayMode::advanced);
    EXPECT_EQ(stored("settings.menuBarDisplayMode"), DefaultsValue(std::string("advanced")));
    EXPECT_EQ(announced, 2);
}

// Thresholds.

TEST_F(UserSettingsTest, ThresholdsAreNormalisedWhileTheStoreKeepsWhatWasWritten) {
    UserSettings settings(store, service);
    settings.setCPUNormal(95);
    settings.setCPUHigh(90);
    const auto before = store.values();
    EXPECT_EQ(settings.thresholds().cpuNormal, 95);
    EXPECT_EQ(settings.thresholds().cpuHigh, 96);
    EXPECT_EQ(store.values(), before);
    EXPECT_EQ(settings.cpuNormal(), 95);
    EXPECT_EQ(settings.cpuHigh(), 90);
}

TEST_F(UserSettingsTest, TheStoredPairOfZerosYieldsOneAndTwo) {
    UserSettings settings(store, service);
    settings.setGPUNormal(0);
    settings.setGPUHigh(0);
    EXPECT_EQ(settings.thresholds(), (MetricThresholds{80, 90, 1, 2, 80, 90, 80, 90}));
}

TEST_F(UserSettingsTest, TheStoredPairOfHundredsYields99And100) {
    UserSettings settings(store, service);
    settings.setMemoryNormal(100);
    settings.setMemoryHigh(100);
    EXPECT_EQ(settings.thresholds(), (MetricThresholds{80, 90, 90, 95, 99, 100, 80, 90}));
}

TEST_F(UserSettingsTest, AnUpperThresholdAbove100YieldsHundred) {
    UserSettings settings(store, service);
    settings.setStorageNormal(50);
    settings.setStorageHigh(150);
    EXPECT_EQ(settings.thresholds(), (MetricThresholds{80, 90, 90, 95, 80, 90, 50, 100}));
}

TEST_F(UserSettingsTest, EachMetricIsNormalisedByItself) {
    UserSettings settings(store, service);
    settings.setCPUNormal(10);
    settings.setCPUHigh(20);
    settings.setGPUNormal(30);
    settings.setGPUHigh(25);
    settings.setMemoryNormal(-5);
    settings.setMemoryHigh(40);
    settings.setStorageNormal(99.5);
    settings.setStorageHigh(60);
    EXPECT_EQ(settings.thresholds(), (MetricThresholds{10, 20, 30, 31, 1, 40, 99, 100}));
}

TEST_F(UserSettingsTest, AStoredThresholdThatIsNoNumberIsRepairedOnRead) {
    UserSettings settings(store, service);
    settings.setCPUNormal(std::numeric_limits<double>::quiet_NaN());
    settings.setGPUHigh(std::numeric_limits<double>::infinity());
    EXPECT_EQ(settings.thresholds(), (MetricThresholds{1, 90, 90, 100, 80, 90, 80, 90}));
}

TEST_F(UserSettingsTest, ResetWritesTheEightDefaultsInOrderAndNothingElse) {
    UserSettings settings(store, service);
    settings.setMenuBarDisplayMode(MenuBarDisplayMode::iconOnly);
    settings.setShortcutKeyCode(12);
    settings.setShortcutModifiers(0x40000);
    settings.setShortcutRegistrationState(RegistrationState::conflict);
    settings.setLaunchOnLogin(true);
    settings.setRemindRestartAfterWeek(true);
    settings.setHasPresentedInitialSettings(true);
    settings.setCPUNormal(1);
    settings.setStorageHigh(2);
    const std::size_t before = store.writes().size();

    settings.resetThresholdsToDefaults();

    auto writes = store.writes();
    writes.erase(writes.begin(), writes.begin() + static_cast<std::ptrdiff_t>(before));
    EXPECT_THAT(writes,
                ElementsAre(Pair("settings.cpuModerateThreshold", DefaultsValue(80.0)),
                            Pair("settings.cpuHighThreshold", DefaultsValue(90.0)),
                            Pair("settings.gpuModerateThreshold", DefaultsValue(90.0)),
                            Pair("settings.gpuHighThreshold", DefaultsValue(95.0)),
                            Pair("settings.memoryModerateThreshold", DefaultsValue(80.0)),
                            Pair("settings.memoryHighThreshold", DefaultsValue(90.0)),
                            Pair("settings.storageModerateThreshold", DefaultsValue(80.0)),
                            Pair("settings.storageCriticalThreshold", DefaultsValue(90.0))));
    EXPECT_EQ(settings.menuBarDisplayMode(), MenuBarDisplayMode::iconOnly);
    EXPECT_EQ(settings.shortcutKeyCode(), 12);
    EXPECT_EQ(settings.shortcutModifiers(), 0x40000);
    EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::conflict);
    EXPECT_TRUE(settings.launchOnLogin());
    EXPECT_TRUE(settings.remindRestartAfterWeek());
    EXPECT_TRUE(settings.hasPresentedInitialSettings());
}

TEST_F(UserSettingsTest, ResetAnnouncesEachOfItsWritesBeforehand) {
    UserSettings settings(store, service);
    std::vector<std::size_t> writesSeen;
    const auto observation =
        settings.objectWillChange([&] { writesSeen.push_back(store.writes().size()); });
    settings.resetThresholdsToDefaults();
    EXPECT_THAT(writesSeen, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7));
}

// The registration state.

TEST_F(UserSettingsTest, TheRegistrationStateStartsInactiveAtEveryLaunch) {
    {
        UserSettings settings(store, service);
        EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::inactive);
        settings.setShortcutRegistrationState(RegistrationState::failed);
        EXPECT_EQ(settings.shortcutRegistrationState(), RegistrationState::failed);
    }
    EXPECT_THAT(store.writes(), IsEmpty());
    EXPECT_EQ(UserSettings(store, service).shortcutRegistrationState(),
              RegistrationState::inactive);
}

TEST_F(UserSettingsTest, TheRegistrationStateAnnouncesBeforeItChanges) {
    UserSettings settings(store, service);
    std::vector<RegistrationState> seen;
    const auto observation =
        settings.objectWillChange([&] { seen.push_back(settings.shortcutRegistrationState()); });
    settings.setShortcutRegistrationState(RegistrationState::active);
    settings.setShortcutRegistrationState(RegistrationState::conflict);
    EXPECT_THAT(seen, ElementsAre(RegistrationState::inactive, RegistrationState::active));
}

TEST_F(UserSettingsTest, TheRegistrationStatesAreInOrder) {
    EXPECT_EQ(static_cast<int>(RegistrationState::inactive), 0);
    EXPECT_EQ(static_cast<int>(RegistrationState::active), 1);
    EXPECT_EQ(static_cast<int>(RegistrationState::conflict), 2);
    EXPECT_EQ(static_cast<int>(RegistrationState::failed), 3);
}

// The legacy shortcut.

TEST_F(UserSettingsTest, ASecondLaunchWithoutAShortcutGainsCommandL) {
    store.set("settings.hasPresentedInitialSettings", true);
    const UserSettings settings(store, service);
    EXPECT_EQ(stored("settings.shortcutKeyCode"), DefaultsValue(std::int64_t{37}));
    EXPECT_EQ(stored("settings.shortcutModifiers"), DefaultsValue(std::int64_t{1048576}));
    EXPECT_EQ(store.writes().size(), 3U);
    EXPECT_EQ(settings.shortcutKeyCode(), 37);
}

TEST_F(UserSettingsTest, TheMigrationReplacesModifiersStoredAlone) {
    store.set("settings.hasPresentedInitialSettings", true);
    store.set("settings.shortcutModifiers", std::int64_t{0x20000});
    const UserSettings settings(store, service);
    EXPECT_EQ(settings.shortcutModifiers(), 0x100000);
}

TEST_F(UserSettingsTest, AClearedShortcutStopsTheMigration) {
    store.set("settings.hasPresentedInitialSettings", true);
    store.set("settings.shortcutKeyCode", std::int64_t{-1});
    const auto before = store.values();
    const UserSettings settings(store, service);
    EXPECT_EQ(store.values(), before);
    EXPECT_EQ(settings.shortcutKeyCode(), -1);
}

TEST_F(UserSettingsTest, AStoredShortcutStopsTheMigration) {
    store.set("settings.hasPresentedInitialSettings", true);
    store.set("settings.shortcutKeyCode", std::int64_t{3});
    const auto before = store.values();
    const UserSettings settings(store, service);
    EXPECT_EQ(store.values(), before);
}

TEST_F(UserSettingsTest, AKeyCodeOfAnotherTypeIsAValueAndStopsTheMigration) {
    store.set("settings.hasPresentedInitialSettings", true);
    store.set("settings.shortcutKeyCode", std::string("37"));
    const auto before = store.values();
    const UserSettings settings(store, service);
    EXPECT_EQ(store.values(), before);
    EXPECT_EQ(settings.shortcutKeyCode(), -1);
}

TEST_F(UserSettingsTest, ABrandNewStoreIsLeftWithoutAShortcut) {
    const UserSettings settings(store, service);
    EXPECT_FALSE(store.contains("settings.shortcutKeyCode"));
    EXPECT_FALSE(store.contains("settings.shortcutModifiers"));
}

TEST_F(UserSettingsTest, AFirstLaunchFlagThatIsFalseOrIllTypedMigratesNothing) {
    for (const DefaultsValue& flag : {DefaultsValue(false), DefaultsValue(std::int64_t{1}),
                                      DefaultsValue(std::string("true"))}) {
        store.set("settings.hasPresentedInitialSettings", flag);
        const UserSettings settings(store, service);
        EXPECT_FALSE(store.contains("settings.shortcutKeyCode"));
    }
}

TEST_F(UserSettingsTest, AStoreThatComesLateIsMigratedThenAndOnce) {
    store.beSlow();
    const UserSettings settings(store, service);
    EXPECT_FALSE(settings.isLoaded());
    service.setStatus(platform::LoginServiceStatus::enabled);
    store.changeFromOutside({{"settings.hasPresentedInitialSettings", true}});
    EXPECT_TRUE(settings.isLoaded());
    EXPECT_THAT(
        store.writes(),
        ElementsAre(Pair("settings.shortcutKeyCode", DefaultsValue(std::int64_t{37})),
                    Pair("settings.shortcutModifiers", DefaultsValue(std::int64_t{1048576})),
                    Pair("settings.launchOnLogin", DefaultsValue(true))));
    store.remove("settings.shortcutKeyCode");
    store.changeFromOutside({{"settings.cpuHighThreshold", 70.0}});
    EXPECT_EQ(settings.shortcutKeyCode(), -1);
}

TEST_F(UserSettingsTest, TheMigrationComesBeforeTheLoginItem) {
    store.set("settings.hasPresentedInitialSettings", true);
    service.setStatus(platform::LoginServiceStatus::enabled);
    const UserSettings settings(store, service);
    auto writes = store.writes();
    writes.erase(writes.begin());
    EXPECT_THAT(
        writes,
        ElementsAre(Pair("settings.shortcutKeyCode", DefaultsValue(std::int64_t{37})),
                    Pair("settings.shortcutModifiers", DefaultsValue(std::int64_t{1048576})),
                    Pair("settings.launchOnLogin", DefaultsValue(true))));
}

// The first launch.

TEST_F(UserSettingsTest, TheFirstLaunchPresentsTheSettingsOnceAndFixesTheMode) {
    UserSettings settings(store, service);
    EXPECT_TRUE(settings.presentInitialSettingsIfNeeded());
    EXPECT_THAT(
        store.writes(),
        ElementsAre(Pair("settings.menuBarDisplayMode", DefaultsValue(std::string("advanced"))),
                    Pair("settings.hasPresentedInitialSettings", DefaultsValue(true))));
    EXPECT_FALSE(settings.presentInitialSettingsIfNeeded());
    EXPECT_EQ(store.writes().size(), 2U);
}

TEST_F(UserSettingsTest, TheFirstLaunchAnnouncesItsWrites) {
    UserSettings settings(store, service);
    std::vector<std::size_t> writesSeen;
    const auto observation =
        settings.objectWillChange([&] { writesSeen.push_back(store.writes().size()); });
    settings.presentInitialSettingsIfNeeded();
    EXPECT_THAT(writesSeen, ElementsAre(0, 1));
}

TEST_F(UserSettingsTest, TheFirstLaunchKeepsAModeThatIsStored) {
    for (const char* mode : {"iconOnly", "unknown", ""}) {
        store.set("settings.menuBarDisplayMode", std::string(mode));
        store.remove("settings.hasPresentedInitialSettings");
        UserSettings settings(store, service);
        EXPECT_TRUE(settings.presentInitialSettingsIfNeeded());
        EXPECT_EQ(stored("settings.menuBarDisplayMode"), DefaultsValue(std::string(mode)));
    }
}

TEST_F(UserSettingsTest, TheFirstLaunchKeepsAModeOfAnotherType) {
    store.set("settings.menuBarDisplayMode", std::int64_t{5});
    UserSettings settings(store, service);
    EXPECT_TRUE(settings.presentInitialSettingsIfNeeded());
    EXPECT_EQ(stored("settings.menuBarDisplayMode"), DefaultsValue(std::int64_t{5}));
}

TEST_F(UserSettingsTest, LaterLaunchesPresentNothing) {
    UserSettings(store, service).presentInitialSettingsIfNeeded();
    EXPECT_FALSE(UserSettings(store, service).presentInitialSettingsIfNeeded());
}

TEST_F(UserSettingsTest, TheShortcutComesWithTheLaunchAfterTheFirst) {
    {
        UserSettings first(store, service);
        first.presentInitialSettingsIfNeeded();
        EXPECT_EQ(first.shortcutKeyCode(), -1);
    }
    EXPECT_EQ(UserSettings(store, service).shortcutKeyCode(), 37);
}

// The process-wide instance.

TEST_F(UserSettingsTest, TheSharedInstanceIsMadeOnceOnFirstUseOnThePlatformsStore) {
    static MemoryUserDefaults platformStore;
    static ScriptedLoginService platformService;
    platform::Platform machine;
    machine.userDefaults = &platformStore;
    machine.loginService = &platformService;
    platform::install(machine);
    EXPECT_THAT(platformService.calls(), IsEmpty());
    UserSettings& settings = UserSettings::shared();
    EXPECT_EQ(&settings, &UserSettings::shared());
    EXPECT_EQ(platformService.calls().size(), 1U);
    settings.setCPUHigh(77);
    EXPECT_EQ(platformStore.number("settings.cpuHighThreshold"), 77);
}

TEST_F(UserSettingsTest, TheDefaultLoggerRecordsNothing) {
    store.set("settings.launchOnLogin", true);
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    UserSettings settings(store, service);
    settings.updateLoginItem();
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_FALSE(store.boolean("settings.launchOnLogin").value());
}

}  // namespace
}  // namespace tarnwick
