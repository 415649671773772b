// SPDX-License-Identifier: MIT
// The one object that owns the current picture of the machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "core/metric_sources.h"
#include "core/records/metric_records.h"
#include "core/records/published.h"
#include "evaluation/metric_summary_resolver.h"
#include "platform/dispatch.h"
#include "platform/log.h"
#include "platform/process_info.h"
#include "services/battery_reader.h"
#include "settings/user_settings.h"

namespace tarnwick {

/// What a stats manager runs on; the defaults are the process-wide ones.
struct StatsManagerEnvironment {
    platform::Dispatch& dispatch;
    MetricSources sources;
    /// Wall-clock seconds since 1970, for the time stamps of history samples.
    std::function<double()> wallClock;
    platform::Logger logger;

    static StatsManagerEnvironment shared();
};

/// Runs two repeating timers, measures in the background, applies the results on the main thread
/// and publishes every field. At most one fast and one slow refresh run at a time; requests made
/// meanwhile collapse into one follow-up. Main thread only.
class StatsManager final : public ObservableObject {
 public:
    /// Starts polling at once: a fast refresh, a slow refresh, then the timers. `settings` null
    /// means the shared settings. The intervals of the slow timer are seconds.
    StatsManager(UserSettings* settings, std::shared_ptr<BatteryReader> batteryService,
                 double slowVisibleInterval, double slowIdleInterval,
                 StatsManagerEnvironment environment = StatsManagerEnvironment::shared());
    ~StatsManager();

    // Each holds the empty value until its first measurement.
    Published<BatteryInfo> batteryInfo{*this};
    /// True from the first battery reading on, whether or not there is a battery.
    Published<bool> batteryDetectionComplete{*this, false};
    /// The one volume that the storage sampler reads; empty also when it does not answer.
    Published<std::vector<StorageInfo>> storageInfo{*this};
    Published<MemoryInfo> memoryInfo{*this};
    Published<CPUInfo> cpuInfo{*this};
    Published<GPUInfo> gpuInfo{*this};
    Published<SystemInfo> systemInfo{*this};
    // At most kTopProcessLimit rows each; while the panel is hidden they keep their last rows.
    Published<std::vector<AppProcessInfo>> topCPUProcesses{*this};
    Published<std::vector<AppProcessInfo>> topMemoryProcesses{*this};
    // Histories in percent, oldest first, at most kHistoryLimit samples each.
    Published<std::vector<UsageSample>> cpuUsageHistory{*this};
    Published<std::vector<UsageSample>> gpuUsageHistory{*this};
    Published<std::vector<UsageSample>> memoryUsageHistory{*this};
    Published<std::vector<UsageSample>> storageUsageHistory{*this};
    Published<NetworkInfo> networkInfo{*this};
    /// As ProcessInfo::thermalState() tells it.
    Published<std::int64_t> thermalState{*this, platform::kUnknownThermalState};

    static constexpr std::size_t kHistoryLimit = 60;
    /// Rows that each list of top processes is asked for.
    static constexpr int kTopProcessLimit = 3;
    /// The process sampler forgets ended processes once in this many visible fast refreshes.
    static constexpr int kVisibleRefreshesPerPrune = 15;
    // Pace of the fast timer, seconds.
    static constexpr double kFastVisibleInterval = 2;
    static constexpr double kFastIdleInterval = 10;
    /// How late a timer may fire, so that wake-ups can be shared: this share of its interval, but
    /// at least the minimum below, in seconds.
    static constexpr double kToleranceShare = 0.15;
    static constexpr double kFastMinimumTolerance = 0.25;
    static constexpr double kSlowMinimumTolerance = 1;

    /// Starts a fast refresh (CPU, GPU, memory, network and, while the panel is visible, thermal
    /// state and processes), or queues one. If the system starts no thread for it, nothing is
    /// refreshed, and the next request tries again; so it is with a slow one.
    void refreshFast();
    /// Starts a slow refresh (battery, storage, uptime, thermal state), or queues one.
    /// `exactBattery` asks for a fresh battery reading instead of a cached one.
    void refreshSlow(bool exactBattery);
    /// A fast refresh and an exact slow one: what a person means by refresh.
    void refreshNow();
    /// Replaces both timers according to the panel's visibility.
    void scheduleTimers();
    /// The panel is on screen now: faster pace, one fast refresh at once.
    void popoverDidAppear();
    /// The panel has gone: slower pace.
    void popoverDidDisappear();
    bool isPopoverVisible() const { return isPopoverVisible_; }

    /// Whether anything has been measured yet.
    bool hasCollectedData() const;
    /// The volume with the largest total; the first of several equally large ones; absent without
    /// volumes.
    std::optional<StorageInfo> primaryStorage() const;
    /// What the panel's header says.
    MetricDisplaySummary displaySummary() const;
    /// What the status item says at `time` (seconds since 1970): the same as displaySummary()
    /// before the first measurement and while a metric reaches a threshold; otherwise one metric
    /// after the other, a new one each clock minute.
    MetricDisplaySummary menuBarSummary(double time) const;

    UserSettings& settings() const { return settings_; }

 private:
    /// Expires with the manager. Work that runs later holds it, and locks it on the main thread
    /// only.
    using Weak = std::weak_ptr<StatsManager*>;

    /// The manager, or null when it is gone.
    static StatsManager* alive(const Weak& manager);
    /// Takes the result of a fast measurement. If pruning is due, prunes in the background before
    /// applying the result.
    void receiveFast(FastRefreshSnapshot snapshot, bool includesProcesses);
    void applyFast(FastRefreshSnapshot snapshot);
    // The stages of a slow refresh, each started when the one before was applied.
    void startBatteryStage(bool exactBattery);
    void startStorageStage(bool exactBattery);
    void startHealthStage(bool exactBattery);
    void applyStorage(std::optional<StorageInfo> storage, double uptime, std::int64_t thermal);
    /// The rest of a slow refresh, in the background; without a thread the refresh ends here.
    void continueSlow(std::function<void()> work);
    void finishSlow(BatteryInfo battery);
    void appendSample(Published<std::vector<UsageSample>>& history, double value);

    UserSettings& settings_;
    std::shared_ptr<BatteryReader> batteryService_;
    platform::Dispatch& dispatch_;
    /// Shared with the refreshes in flight.
    std::shared_ptr<const MetricSources> sources_;
    std::function<double()> wallClock_;
    platform::Logger logger_;
    double slowVisibleInterval_;
    double slowIdleInterval_;
    bool isFastRefreshInFlight_ = false;
    bool isSlowRefreshInFlight_ = false;
    bool queuedFastRefresh_ = false;
    bool queuedSlowRefresh_ = false;
    bool queuedSlowExactBatteryRefresh_ = false;
    /// Fast refreshes applied that were started while the panel was visible; never reset.
    std::int64_t fastRefreshCount_ = 0;
    bool isPopoverVisible_ = false;
    std::unique_ptr<platform::Timer> fastTimer_;
    std::unique_ptr<platform::Timer> slowTimer_;
    std::shared_ptr<StatsManager*> self_ = std::make_shared<StatsManager*>(this);
};

}  // namespace tarnwick
