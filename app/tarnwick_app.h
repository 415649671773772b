// SPDX-License-Identifier: MIT
// The application object: owns the long-lived objects, keeps the status item's label current and
// the stored shortcut registered.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "app/app_delegate.h"
#include "app/settings_window.h"
#include "core/records/published.h"
#include "core/stats_manager.h"
#include "platform/desktop.h"
#include "platform/dispatch.h"
#include "platform/hot_keys.h"
#include "platform/log.h"
#include "platform/next_turn.h"
#include "platform/windows.h"
#include "settings/hot_key_service.h"
#include "settings/user_settings.h"

namespace tarnwick {

/// Where the application shows itself. Requires: every object outlives the application.
struct TarnwickAppDesktop {
    platform::StatusItem& statusItem;
    platform::Windows& windows;
    /// Makes the content of the settings window, which edits the settings.
    std::function<std::unique_ptr<platform::View>(UserSettings&)> makeSettingsView;
};

/// The services that the application uses. shared() gives those of the process.
struct TarnwickAppEnvironment {
    UserSettings& settings;
    std::shared_ptr<BatteryReader> batteryService;
    StatsManagerEnvironment stats;
    platform::HotKeys& hotKeys;
    platform::Logger logger{};

    static TarnwickAppEnvironment shared();
};

/// Main thread only.
class TarnwickApp {
 public:
    /// Seconds between two slow refreshes while the panel is visible.
    static constexpr double kSlowVisibleInterval = 30;
    /// Seconds between two slow refreshes while it is hidden.
    static constexpr double kSlowIdleInterval = 120;

    /// Creates the stats manager, which starts polling, shows the label and registers the stored
    /// shortcut.
    explicit TarnwickApp(TarnwickAppDesktop desktop,
                         TarnwickAppEnvironment environment = TarnwickAppEnvironment::shared());
    TarnwickApp(const TarnwickApp&) = delete;
    TarnwickApp& operator=(const TarnwickApp&) = delete;
    ~TarnwickApp();

    AppDelegate& appDelegate() { return appDelegate_; }
    UserSettings& settings() { return environment_.settings; }
    StatsManager& statsManager() { return statsManager_; }
    HotKeyService& hotKeyService() { return *hotKeyService_; }

    /// Shows the settings window, or brings it to the front.
    void showSettingsWindow() { settingsWindow_.show(); }
    /// Call this when the label is on screen. The first call starts to serve the shortcut; later
    /// ones do nothing.
    void labelDidAppear();
    /// Call this when the machine woke from sleep. Runs both refreshes at once, because the figures
    /// are out of date.
    void machineDidWake() { statsManager_.refreshNow(); }

 private:
    void showLabel();
    void noticeShortcut();
    /// Does nothing while the user records a shortcut: the end of the recording applies it.
    void applyShortcut();

    platform::StatusItem& statusItem_;
    TarnwickAppEnvironment environment_;
    /// Expires with the application; queued work holds it weakly.
    std::shared_ptr<TarnwickApp*> self_ = std::make_shared<TarnwickApp*>(this);
    AppDelegate appDelegate_;
    StatsManager statsManager_;
    /// Absent until the label appears, which it does in the constructor.
    std::unique_ptr<HotKeyService> hotKeyService_;
    SettingsWindow settingsWindow_;
    // The stored shortcut as it was at the last look.
    std::int64_t shortcutKeyCode_;
    std::int64_t shortcutModifiers_;
    bool isRecordingShortcut_ = false;
    /// Rebuilds the label once per turn, after all fields of that turn were written.
    platform::NextTurn nextLabel_{environment_.stats.dispatch, [this] { showLabel(); }};
    /// Waits for the next turn, so that key and modifiers are both written before either is read.
    platform::NextTurn nextShortcut_{environment_.stats.dispatch, [this] { noticeShortcut(); }};
    /// Waits for the next turn: registering inside the desktop's call would destroy the object that
    /// makes the call.
    platform::NextTurn nextRegistration_{environment_.stats.dispatch, [this] { applyShortcut(); }};
    Subscription statsSubscription_;
    Subscription settingsSubscription_;
};

}  // namespace tarnwick
