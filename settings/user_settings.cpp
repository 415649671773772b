// SPDX-License-Identifier: MIT
#include "settings/user_settings.h"

#include <limits>
#include <utility>

#include "platform/platform.h"
#include "settings/key_codes.h"
#include "settings/shortcut.h"

namespace tarnwick {
namespace {

/// Where a property is kept, and its value while the store has no usable one.
template <class T>
struct Property {
    std::string_view key;
    T fallback;
};

// Existing stores hold these keys, so they must not change; some differ from the property's name.
constexpr Property<std::string_view> kMenuBarDisplayMode{"settings.menuBarDisplayMode", "advanced"};
constexpr Property<double> kCPUNormal{"settings.cpuModerateThreshold", 80};
constexpr Property<double> kCPUHigh{"settings.cpuHighThreshold", 90};
constexpr Property<double> kGPUNormal{"settings.gpuModerateThreshold", 90};
constexpr Property<double> kGPUHigh{"settings.gpuHighThreshold", 95};
constexpr Property<double> kMemoryNormal{"settings.memoryModerateThreshold", 80};
constexpr Property<double> kMemoryHigh{"settings.memoryHighThreshold", 90};
constexpr Property<double> kStorageNormal{"settings.storageModerateThreshold", 80};
constexpr Property<double> kStorageHigh{"settings.storageCriticalThreshold", 90};
constexpr Property<bool> kLaunchOnLogin{"settings.launchOnLogin", false};
constexpr Property<bool> kRemindRestartAfterWeek{"settings.remindRestartAfterWeek", false};
constexpr Property<std::int64_t> kShortcutKeyCode{"settings.shortcutKeyCode", -1};
constexpr Property<std::int64_t> kShortcutModifiers{"settings.shortcutModifiers", 0};
constexpr Property<bool> kHasPresentedInitialSettings{"settings.hasPresentedInitialSettings",
                                                      false};

/// Command-L: the fixed shortcut of earlier versions, in which it could not be chosen.
constexpr std::int64_t kLegacyShortcutKeyCode = key_code::kL;
constexpr std::int64_t kLegacyShortcutModifiers = modifier_flag::kCommand;

bool read(platform::UserDefaults& store, const Property<bool>& property) {
    return store.boolean(property.key).value_or(property.fallback);
}

double read(platform::UserDefaults& store, const Property<double>& property) {
    return store.number(property.key).value_or(property.fallback);
}

/// A value outside these bounds counts as missing: any program can write into the store.
std::int64_t read(platform::UserDefaults& store, const Property<std::int64_t>& property,
                  std::int64_t lowest, std::int64_t highest) {
    const std::int64_t value = store.integer(property.key).value_or(property.fallback);
    return value >= lowest && value <= highest ? value : property.fallback;
}

std::string read(platform::UserDefaults& store, const Property<std::string_view>& property) {
    return store.text(property.key).value_or(std::string(property.fallback));
}

}  // namespace

std::string_view rawValue(MenuBarDisplayMode mode) {
    return mode == MenuBarDisplayMode::iconOnly ? "iconOnly" : "advanced";
}

std::optional<MenuBarDisplayMode> menuBarDisplayModeFromRawValue(std::string_view raw) {
    for (const MenuBarDisplayMode mode : kMenuBarDisplayModes) {
        if (rawValue(mode) == raw) {
            return mode;
        }
    }
    return std::nullopt;
}

UserSettings::UserSettings(platform::UserDefaults& store, platform::LoginService& loginService,
                           platform::Logger logger)
    : store_(store), loginService_(loginService), logger_(logger) {
    settle();
    storeSubscription_ = store_.onExternalChange([this] { storeDidChange(); });
    loginSubscription_ = loginService_.onLateAnswer([this] { syncLoginItemState(); });
}

UserSettings& UserSettings::shared() {
    static auto* const settings =
        new UserSettings(*platform::current().userDefaults, *platform::current().loginService);
    return *settings;
}

void UserSettings::write(std::string_view key, const platform::DefaultsValue& value) {
    announceChange();
    store_.set(key, value);
}

void UserSettings::settle() {
    isSettled_ = store_.isComplete();
    migrateLegacyShortcut();
    syncLoginItemState();
    settledLaunchOnLogin_ = launchOnLogin();
}

void UserSettings::storeDidChange() {
    announceChange();
    if (!isSettled_ && store_.isComplete()) {
        settle();
        return;
    }
    const bool wanted = launchOnLogin();
    if (std::exchange(settledLaunchOnLogin_, wanted) != wanted) {
        updateLoginItem();
    }
}

/// A user who has been through the first launch and never stored a shortcut gets the legacy one. So
/// a new store has none until its second launch. A cleared shortcut (-1) counts as stored.
void UserSettings::migrateLegacyShortcut() {
    if (hasPresentedInitialSettings() && !store_.contains(kShortcutKeyCode.key)) {
        setShortcutKeyCode(kLegacyShortcutKeyCode);
        setShortcutModifiers(kLegacyShortcutModifiers);
    }
}

std::string UserSettings::menuBarDisplayModeRawValue() const {
    return read(store_, kMenuBarDisplayMode);
}

void UserSettings::setMenuBarDisplayModeRawValue(const std::string& raw) {
    write(kMenuBarDisplayMode.key, raw);
}

MenuBarDisplayMode UserSettings::menuBarDisplayMode() const {
    return menuBarDisplayModeFromRawValue(menuBarDisplayModeRawValue())
        .value_or(MenuBarDisplayMode::advanced);
}

void UserSettings::setMenuBarDisplayMode(MenuBarDisplayMode mode) {
    setMenuBarDisplayModeRawValue(std::string(rawValue(mode)));
}

double UserSettings::cpuNormal() const {
    return read(store_, kCPUNormal);
}

void UserSettings::setCPUNormal(double percent) {
    write(kCPUNormal.key, percent);
}

double UserSettings::cpuHigh() const {
    return read(store_, kCPUHigh);
}

void UserSettings::setCPUHigh(double percent) {
    write(kCPUHigh.key, percent);
}

double UserSettings::gpuNormal() const {
    return read(store_, kGPUNormal);
}

void UserSettings::setGPUNormal(double percent) {
    write(kGPUNormal.key, percent);
}

double UserSettings::gpuHigh() const {
    return read(store_, kGPUHigh);
}

void UserSettings::setGPUHigh(double percent) {
    write(kGPUHigh.key, percent);
}

double UserSettings::memoryNormal() const {
    return read(store_, kMemoryNormal);
}

void UserSettings::setMemoryNormal(double percent) {
    write(kMemoryNormal.key, percent);
}

double UserSettings::memoryHigh() const {
    return read(store_, kMemoryHigh);
}

void UserSettings::setMemoryHigh(double percent) {
    write(kMemoryHigh.key, percent);
}

double UserSettings::storageNormal() const {
    return read(store_, kStorageNormal);
}

void UserSettings::setStorageNormal(double percent) {
    write(kStorageNormal.key, percent);
}

double UserSettings::storageHigh() const {
    return read(store_, kStorageHigh);
}

void UserSettings::setStorageHigh(double percent) {
    write(kStorageHigh.key, percent);
}

MetricThresholds UserSettings::thresholds() const {
    const auto cpu = normalizedThresholds(cpuNormal(), cpuHigh());
    const auto gpu = normalizedThresholds(gpuNormal(), gpuHigh());
    const auto memory = normalizedThresholds(memoryNormal(), memoryHigh());
    const auto storage = normalizedThresholds(storageNormal(), storageHigh());
    return {cpu.normal,    cpu.high,    gpu.normal,     gpu.high,
            memory.normal, memory.high, storage.normal, storage.high};
}

void UserSettings::resetThresholdsToDefaults() {
    for (const auto& property : {kCPUNormal, kCPUHigh, kGPUNormal, kGPUHigh, kMemoryNormal,
                                 kMemoryHigh, kStorageNormal, kStorageHigh}) {
        write(property.key, property.fallback);
    }
}

bool UserSettings::launchOnLogin() const {
    return read(store_, kLaunchOnLogin);
}

void UserSettings::setLaunchOnLogin(bool on) {
    settledLaunchOnLogin_ = on;
    write(kLaunchOnLogin.key, on);
}

bool UserSettings::remindRestartAfterWeek() const {
    return read(store_, kRemindRestartAfterWeek);
}

void UserSettings::setRemindRestartAfterWeek(bool on) {
    write(kRemindRestartAfterWeek.key, on);
}

std::int64_t UserSettings::shortcutKeyCode() const {
    // The codes that a hot key can have, and -1.
    return read(store_, kShortcutKeyCode, -1, std::numeric_limits<std::uint32_t>::max());
}

void UserSettings::setShortcutKeyCode(std::int64_t code) {
    write(kShortcutKeyCode.key, code);
}

std::int64_t UserSettings::shortcutModifiers() const {
    return read(store_, kShortcutModifiers, 0, std::numeric_limits<std::int64_t>::max());
}

void UserSettings::setShortcutModifiers(std::int64_t modifiers) {
    write(kShortcutModifiers.key, modifiers);
}

void UserSettings::setShortcutRegistrationState(RegistrationState state) {
    announceChange();
    registrationState_ = state;
}

void UserSettings::setRecordingShortcut(bool isRecording) {
    announceChange();
    isRecordingShortcut_ = isRecording;
}

bool UserSettings::hasPresentedInitialSettings() const {
    return read(store_, kHasPresentedInitialSettings);
}

void UserSettings::setHasPresentedInitialSettings(bool presented) {
    write(kHasPresentedInitialSettings.key, presented);
}

bool UserSettings::presentInitialSettingsIfNeeded() {
    if (hasPresentedInitialSettings()) {
        return false;
    }
    if (!store_.contains(kMenuBarDisplayMode.key)) {
        setMenuBarDisplayMode(MenuBarDisplayMode::advanced);
    }
    setHasPresentedInitialSettings(true);
    return true;
}

}  // namespace tarnwick
