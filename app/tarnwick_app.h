// The entry value: owns the long-lived objects and keeps the status item's label current.
#pragma once

#include <functional>
#include <memory>

#include "app/app_delegate.h"
#include "core/published.h"
#include "core/stats_manager.h"
#include "platform/desktop.h"
#include "platform/dispatch.h"
#include "settings/user_settings.h"

namespace tarnwick {

/// What the application runs on; the defaults are the process-wide ones.
struct TarnwickAppEnvironment {
    UserSettings& settings;
    std::shared_ptr<BatteryReader> batteryService;
    StatsManagerEnvironment stats;

    static TarnwickAppEnvironment shared();
};

/// Main thread only.
class TarnwickApp {
 public:
    /// Seconds between two slow refreshes while the panel is visible.
    static constexpr double kSlowVisibleInterval = 30;
    /// Seconds between two slow refreshes while it is hidden.
    static constexpr double kSlowIdleInterval = 120;

    /// `statusItem` must outlive the application. Creates the stats manager, which starts polling,
    /// and shows the label.
    explicit TarnwickApp(platform::StatusItem& statusItem,
                         TarnwickAppEnvironment environment = TarnwickAppEnvironment::shared());
    TarnwickApp(const TarnwickApp&) = delete;
    TarnwickApp& operator=(const TarnwickApp&) = delete;

    UserSettings& settings() { return environment_.settings; }
    StatsManager& statsManager() { return statsManager_; }
    AppDelegate& appDelegate() { return appDelegate_; }

 private:
    void labelWillChange();
    void showLabel();

    platform::StatusItem& statusItem_;
    TarnwickAppEnvironment environment_;
    StatsManager statsManager_;
    AppDelegate appDelegate_;
    bool isLabelStale_ = false;
    /// Expires with the application; what is queued holds it weakly.
    std::shared_ptr<TarnwickApp*> self_ = std::make_shared<TarnwickApp*>(this);
    Subscription statsSubscription_;
    Subscription settingsSubscription_;
};

}  // namespace tarnwick
