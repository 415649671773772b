// SPDX-License-Identifier: MIT
// The user's preferences, kept in the per-user defaults store.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/records/published.h"
#include "platform/log.h"
#include "platform/login_service.h"
#include "platform/user_defaults.h"
#include "settings/metric_thresholds.h"

namespace tarnwick {

/// What the status item shows. The raw values are stored.
enum class MenuBarDisplayMode {
    /// "iconOnly": the severity icon alone.
    iconOnly,
    /// "advanced": the icon and one live metric.
    advanced,
};

/// Every mode, in the order in which they are offered.
inline constexpr std::array kMenuBarDisplayModes = {MenuBarDisplayMode::iconOnly,
                                                    MenuBarDisplayMode::advanced};

std::string_view rawValue(MenuBarDisplayMode mode);
/// Absent for a text that is not the raw value of a mode.
std::optional<MenuBarDisplayMode> menuBarDisplayModeFromRawValue(std::string_view raw);

/// Whether the stored global shortcut works.
enum class RegistrationState {
    /// No shortcut is registered.
    inactive,
    /// The shortcut is registered.
    active,
    /// The combination is already registered elsewhere.
    conflict,
    /// The system refused for another reason.
    failed,
};

/// Every property except those that live in memory only is read from and written to the store
/// directly. Each write, even of an equal value, announces the change while the store still holds
/// the old value. A missing value, one of the wrong type and one out of range read as the default;
/// reading never writes. A change of the store from outside is announced, too, and a changed
/// start-at-login preference is brought to the system. Main thread only.
class UserSettings final : public ObservableObject {
 public:
    /// Migrates a legacy shortcut, then sets the start-at-login preference to the state that the
    /// system reports. `store` and `loginService` must outlive the settings.
    UserSettings(platform::UserDefaults& store, platform::LoginService& loginService,
                 platform::Logger logger = platform::Logger());

    /// The process-wide instance on the current platform, made on first use and never destroyed.
    static UserSettings& shared();

    /// "advanced" while nothing is stored; any text may be stored.
    std::string menuBarDisplayModeRawValue() const;
    void setMenuBarDisplayModeRawValue(const std::string& raw);
    /// A text that is not the raw value of a mode reads as `advanced`.
    MenuBarDisplayMode menuBarDisplayMode() const;
    void setMenuBarDisplayMode(MenuBarDisplayMode mode);

    // Thresholds as stored, percent. To judge a metric, use thresholds() instead.
    double cpuNormal() const;
    double cpuHigh() const;
    double gpuNormal() const;
    double gpuHigh() const;
    double memoryNormal() const;
    double memoryHigh() const;
    double storageNormal() const;
    double storageHigh() const;
    void setCPUNormal(double percent);
    void setCPUHigh(double percent);
    void setGPUNormal(double percent);
    void setGPUHigh(double percent);
    void setMemoryNormal(double percent);
    void setMemoryHigh(double percent);
    void setStorageNormal(double percent);
    void setStorageHigh(double percent);

    /// Each pair is normalised. The store keeps the values that the user wrote.
    MetricThresholds thresholds() const;
    /// Writes the eight defaults and touches nothing else.
    void resetThresholdsToDefaults();

    /// Whether the user wants the program started at login; see updateLoginItem().
    bool launchOnLogin() const;
    void setLaunchOnLogin(bool on);
    /// Whether the user wants to be reminded of a machine that has run for a week.
    bool remindRestartAfterWeek() const;
    void setRemindRestartAfterWeek(bool on);

    /// Virtual key code of the platform keyboard. -1 means no shortcut; a stored number below -1 or
    /// of more than 32 bits reads as -1.
    std::int64_t shortcutKeyCode() const;
    void setShortcutKeyCode(std::int64_t code);
    /// Device-independent modifier bits: Shift 0x20000, Control 0x40000, Option 0x80000, Command
    /// 0x100000. Ignore other bits. A stored negative number reads as 0.
    std::int64_t shortcutModifiers() const;
    void setShortcutModifiers(std::int64_t modifiers);

    /// Lives in memory only; `inactive` at every start.
    RegistrationState shortcutRegistrationState() const { return registrationState_; }
    void setShortcutRegistrationState(RegistrationState state);

    /// Whether the user is recording a shortcut now. Then none is registered, so that the recorder
    /// also hears the keys of the stored one. Lives in memory only.
    bool isRecordingShortcut() const { return isRecordingShortcut_; }
    void setRecordingShortcut(bool isRecording);

    /// False until the store has answered for the first time, which is announced. Until then every
    /// property that has not been set since the start reads as its default, also in a store that
    /// holds something else.
    bool isLoaded() const { return store_.hasAnswered(); }

    /// Whether the settings window of the first launch has been shown; stays true from then on.
    bool hasPresentedInitialSettings() const;
    void setHasPresentedInitialSettings(bool presented);
    /// Returns true exactly once per store, on the first launch. If no display mode is stored then,
    /// stores `advanced`.
    bool presentInitialSettingsIfNeeded();

    /// Sets the start-at-login preference to what the system will do. Where the system does not
    /// answer, once it has answered.
    void syncLoginItemState();
    /// Registers or unregisters the program as the preference says. If the system refuses, resets
    /// the preference to the system's state.
    void updateLoginItem();

 private:
    void write(std::string_view key, const platform::DefaultsValue& value);
    /// What is done with a store once what it holds is known: at the start, if all is well.
    void settle();
    void migrateLegacyShortcut();
    void storeDidChange();

    platform::UserDefaults& store_;
    platform::LoginService& loginService_;
    platform::Logger logger_;
    RegistrationState registrationState_ = RegistrationState::inactive;
    bool isRecordingShortcut_ = false;
    /// As the system was last told, or has told.
    bool settledLaunchOnLogin_ = false;
    bool isSettled_ = false;
    Subscription storeSubscription_;
    Subscription loginSubscription_;
};

}  // namespace tarnwick
