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
/// Absent for a text that is no mode's raw value.
std::optional<MenuBarDisplayMode> menuBarDisplayModeFromRawValue(std::string_view raw);

/// Whether the stored global shortcut works.
enum class RegistrationState {
    /// No shortcut is registered.
    inactive,
    /// The shortcut is registered.
    active,
    /// Somebody else holds the shortcut.
    conflict,
    /// The system refused for another reason.
    failed,
};

/// Every property but the registration state reads through to the store and writes straight to
/// it; each write, also one of an equal value, announces the change while the store still holds the
/// old one. A missing, ill-typed or impossible value reads as its default, which a read never
/// writes. What somebody else changes in the store is announced, too, and a start-at-login
/// preference among it is brought to the system. Main thread only.
class UserSettings final : public ObservableObject {
 public:
    /// Migrates a legacy shortcut, then brings the start-at-login preference in step with the
    /// system. `store` and `loginService` must outlive the settings.
    UserSettings(platform::UserDefaults& store, platform::LoginService& loginService,
                 platform::Logger logger = platform::Logger());

    /// The process-wide instance on the current platform, made on first use and never destroyed.
    static UserSettings& shared();

    /// "advanced" while nothing is stored; any text may be stored.
    std::string menuBarDisplayModeRawValue() const;
    void setMenuBarDisplayModeRawValue(const std::string& raw);
    /// Every text that is no mode's raw value reads as `advanced`.
    MenuBarDisplayMode menuBarDisplayMode() const;
    void setMenuBarDisplayMode(MenuBarDisplayMode mode);

    // Thresholds as stored, percent; readers that judge use thresholds() instead.
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

    /// Each pair normalised; the store keeps what the user wrote.
    MetricThresholds thresholds() const;
    /// Writes the eight defaults and touches nothing else.
    void resetThresholdsToDefaults();

    /// Whether the user wants the program started at login; see updateLoginItem().
    bool launchOnLogin() const;
    void setLaunchOnLogin(bool on);
    /// Whether the user wants to be reminded of a machine that has run for a week.
    bool remindRestartAfterWeek() const;
    void setRemindRestartAfterWeek(bool on);

    /// Virtual key code of the platform keyboard; -1 means no shortcut, and so does a stored number
    /// below -1 or of more than 32 bits.
    std::int64_t shortcutKeyCode() const;
    void setShortcutKeyCode(std::int64_t code);
    /// Device-independent modifier bits: Shift 0x20000, Control 0x40000, Option 0x80000, Command
    /// 0x100000. Other bits are to be ignored; a stored negative number reads as 0.
    std::int64_t shortcutModifiers() const;
    void setShortcutModifiers(std::int64_t modifiers);

    /// Lives in memory only; `inactive` at every start.
    RegistrationState shortcutRegistrationState() const { return registrationState_; }
    void setShortcutRegistrationState(RegistrationState state);

    /// Whether the settings window of the first launch has been shown; never false again.
    bool hasPresentedInitialSettings() const;
    void setHasPresentedInitialSettings(bool presented);
    /// True exactly once per store, on its first launch; fixes the display mode then.
    bool presentInitialSettingsIfNeeded();

    /// Sets the start-at-login preference to what the system will do.
    void syncLoginItemState();
    /// Registers or unregisters the program as the preference says; puts the preference back when
    /// the system refuses.
    void updateLoginItem();

 private:
    void write(std::string_view key, const platform::DefaultsValue& value);
    void migrateLegacyShortcut();
    void storeDidChange();

    platform::UserDefaults& store_;
    platform::LoginService& loginService_;
    platform::Logger logger_;
    RegistrationState registrationState_ = RegistrationState::inactive;
    /// As the system was last told, or has told.
    bool settledLaunchOnLogin_ = false;
    Subscription storeSubscription_;
};

}  // namespace tarnwick
