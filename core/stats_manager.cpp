// SPDX-License-Identifier: MIT
#include "core/stats_manager.h"

#include <algorithm>
#include <utility>

#include "core/records/checked_math.h"
#include "platform/platform.h"

namespace tarnwick {
namespace {

/// The fast measurement. Runs in the background.
FastRefreshSnapshot measureFast(const MetricSources& sources, bool includeProcesses) {
    FastRefreshSnapshot snapshot;
    snapshot.cpu = sources.readCPUInfo();
    snapshot.gpu = sources.readGPUInfo();
    snapshot.memory = sources.readMemoryInfo();
    snapshot.network = sources.readNetworkInfo();
    if (includeProcesses) {
        snapshot.thermalState = sources.readThermalState();
        TopProcessLists processes = sources.readTopProcesses(StatsManager::kTopProcessLimit);
        snapshot.topCPUProcesses = std::move(processes.cpu);
        snapshot.topMemoryProcesses = std::move(processes.memory);
    } else {
        // Here and not when the panel disappears: at that moment a refresh may still be gathering
        // processes.
        sources.releaseProcessCaches();
    }
    return snapshot;
}

}  // namespace

StatsManagerEnvironment StatsManagerEnvironment::shared() {
    const platform::Platform& platform = platform::current();
    return {
        .dispatch = *platform.dispatch,
        .sources = MetricSources::shared(),
        .wallClock = [kernel = platform.kernel] { return kernel->wallClockSeconds(); },
        .logger = platform::Logger(),
    };
}

StatsManager::StatsManager(UserSettings* settings, std::shared_ptr<BatteryReader> batteryService,
                           double slowVisibleInterval, double slowIdleInterval,
                           StatsManagerEnvironment environment)
    : settings_(settings ? *settings : UserSettings::shared()),
      batteryService_(std::move(batteryService)),
      dispatch_(environment.dispatch),
      sources_(std::make_shared<const MetricSources>(std::move(environment.sources))),
      wallClock_(std::move(environment.wallClock)),
      logger_(environment.logger),
      slowVisibleInterval_(slowVisibleInterval),
      slowIdleInterval_(slowIdleInterval) {
    logger_.info("StatsManager initialized, starting polling");
    refreshFast();
    refreshSlow(false);
    scheduleTimers();
}

StatsManager::~StatsManager() {
    fastTimer_->invalidate();
    slowTimer_->invalidate();
}

StatsManager* StatsManager::alive(const Weak& manager) {
    const auto self = manager.lock();
    return self ? *self : nullptr;
}

void StatsManager::refreshFast() {
    if (isFastRefreshInFlight_) {
        queuedFastRefresh_ = true;
        return;
    }
    isFastRefreshInFlight_ =
        dispatch_.detached([weak = Weak(self_), sources = sources_, &dispatch = dispatch_,
                            includeProcesses = isPopoverVisible_] {
            dispatch.async([weak, includeProcesses,
                            snapshot = measureFast(*sources, includeProcesses)]() mutable {
                if (StatsManager* manager = alive(weak)) {
                    manager->receiveFast(std::move(snapshot), includeProcesses);
                }
            });
        });
}

void StatsManager::receiveFast(FastRefreshSnapshot snapshot, bool includesProcesses) {
    if (includesProcesses) {
        fastRefreshCount_ = checkedIncrement(fastRefreshCount_);
        if (fastRefreshCount_ % kVisibleRefreshesPerPrune == 0 &&
            dispatch_.detached([weak = Weak(self_), sources = sources_, &dispatch = dispatch_,
                                snapshot]() mutable {
                sources->pruneStaleProcesses();
                dispatch.async([weak, snapshot = std::move(snapshot)]() mutable {
                    if (StatsManager* manager = alive(weak)) {
                        manager->applyFast(std::move(snapshot));
                    }
                });
            })) {
            return;
        }
    }
    applyFast(std::move(snapshot));
}

void StatsManager::applyFast(FastRefreshSnapshot snapshot) {
    const double cpuUsage = snapshot.cpu.usagePercentage;
    const double gpuUsage = snapshot.gpu.usagePercentage;
    const double memoryUsage = snapshot.memory.usagePercentage();
    cpuInfo.set(std::move(snapshot.cpu));
    gpuInfo.set(std::move(snapshot.gpu));
    memoryInfo.set(snapshot.memory);
    networkInfo.set(snapshot.network);
    if (snapshot.thermalState) {
        thermalState.set(*snapshot.thermalState);
    }
    if (snapshot.topCPUProcesses && snapshot.topMemoryProcesses) {
        topCPUProcesses.set(std::move(*snapshot.topCPUProcesses));
        topMemoryProcesses.set(std::move(*snapshot.topMemoryProcesses));
    }
    appendSample(cpuUsageHistory, cpuUsage);
    appendSample(gpuUsageHistory, gpuUsage);
    appendSample(memoryUsageHistory, memoryUsage);
    isFastRefreshInFlight_ = false;
    if (std::exchange(queuedFastRefresh_, false)) {
        refreshFast();
    }
}

void StatsManager::refreshSlow(bool exactBattery) {
    if (isSlowRefreshInFlight_) {
        queuedSlowRefresh_ = true;
        queuedSlowExactBatteryRefresh_ = queuedSlowExactBatteryRefresh_ || exactBattery;
        return;
    }
    startBatteryStage(exactBattery);
}

// The battery's quick reading comes first and the health reading, which may take seconds, comes
// last, so that the quick one is not delayed.
void StatsManager::startBatteryStage(bool exactBattery) {
    continueSlow([weak = Weak(self_), service = batteryService_, &dispatch = dispatch_,
                  exactBattery] {
        dispatch.async([weak, exactBattery, battery = service->currentBatteryInfo(exactBattery)] {
            if (StatsManager* manager = alive(weak)) {
                manager->batteryInfo.set(battery);
                manager->batteryDetectionComplete.set(true);
                manager->startStorageStage(exactBattery);
            }
        });
    });
}

void StatsManager::startStorageStage(bool exactBattery) {
    continueSlow([weak = Weak(self_), sources = sources_, &dispatch = dispatch_, exactBattery] {
        std::optional<StorageInfo> storage = sources->readStorageInfo();
        const double uptime = sources->readUptime();
        const std::int64_t thermal = sources->readThermalState();
        dispatch.async([weak, exactBattery, storage = std::move(storage), uptime, thermal] {
            if (StatsManager* manager = alive(weak)) {
                manager->applyStorage(storage, uptime, thermal);
                manager->startHealthStage(exactBattery);
            }
        });
    });
}

void StatsManager::startHealthStage(bool exactBattery) {
    continueSlow(
        [weak = Weak(self_), service = batteryService_, &dispatch = dispatch_, exactBattery] {
            dispatch.async([weak, battery = service->batteryInfoWithHealth(exactBattery)] {
                if (StatsManager* manager = alive(weak)) {
                    manager->finishSlow(battery);
                }
            });
        });
}

void StatsManager::continueSlow(std::function<void()> work) {
    // What is queued stays queued for the next refresh that ends.
    isSlowRefreshInFlight_ = dispatch_.detached(std::move(work));
}

void StatsManager::applyStorage(std::optional<StorageInfo> storage, double uptime,
                                std::int64_t thermal) {
    std::vector<StorageInfo> volumes;
    if (storage) {
        volumes.push_back(*std::move(storage));
    }
    storageInfo.set(std::move(volumes));
    systemInfo.set({.uptime = uptime});
    thermalState.set(thermal);
    const auto primary = primaryStorage();
    appendSample(storageUsageHistory, primary ? primary->usagePercentage() : 0);
}

void StatsManager::finishSlow(BatteryInfo battery) {
    batteryInfo.set(std::move(battery));
    isSlowRefreshInFlight_ = false;
    if (std::exchange(queuedSlowRefresh_, false)) {
        refreshSlow(std::exchange(queuedSlowExactBatteryRefresh_, false));
    }
}

void StatsManager::refreshNow() {
    refreshFast();
    refreshSlow(true);
}

void StatsManager::scheduleTimers() {
    std::optional<double> slowFireTime;
    if (slowTimer_) {
        slowFireTime = slowTimer_->fireTime();
    }
    if (fastTimer_) {
        fastTimer_->invalidate();
    }
    if (slowTimer_) {
        slowTimer_->invalidate();
    }
    const double fastInterval = isPopoverVisible_ ? kFastVisibleInterval : kFastIdleInterval;
    const double slowInterval = isPopoverVisible_ ? slowVisibleInterval_ : slowIdleInterval_;

    auto fast = dispatch_.scheduleRepeating(fastInterval, [weak = Weak(self_)] {
        if (StatsManager* manager = alive(weak)) {
            manager->refreshFast();
        }
    });
    fast->setTolerance(std::max(kToleranceShare * fastInterval, kFastMinimumTolerance));

    auto slow = dispatch_.scheduleRepeating(slowInterval, [weak = Weak(self_)] {
        if (StatsManager* manager = alive(weak)) {
            manager->refreshSlow(false);
        }
    });
    // A change of pace may make the next slow refresh earlier, but never later than it was due.
    if (slowFireTime) {
        slow->setFireTime(std::min(*slowFireTime, slow->fireTime()));
    }
    slow->setTolerance(std::max(kToleranceShare * slowInterval, kSlowMinimumTolerance));

    fastTimer_ = std::move(fast);
    slowTimer_ = std::move(slow);
}

void StatsManager::popoverDidAppear() {
    if (isPopoverVisible_) {
        return;
    }
    isPopoverVisible_ = true;
    scheduleTimers();
    refreshFast();
}

void StatsManager::popoverDidDisappear() {
    if (!isPopoverVisible_) {
        return;
    }
    isPopoverVisible_ = false;
    scheduleTimers();
}

bool StatsManager::hasCollectedData() const {
    return cpuInfo->coreCount > 0 || gpuInfo->isAvailable || memoryInfo->total != 0 ||
           !storageInfo->empty();
}

std::optional<StorageInfo> StatsManager::primaryStorage() const {
    // max_element keeps the first of equals.
    const auto largest = std::max_element(
        storageInfo->begin(), storageInfo->end(),
        [](const StorageInfo& a, const StorageInfo& b) { return a.totalSpace < b.totalSpace; });
    if (largest == storageInfo->end()) {
        return std::nullopt;
    }
    return *largest;
}

void StatsManager::appendSample(Published<std::vector<UsageSample>>& history, double value) {
    const UsageSample sample{.id = UUID::random(), .timestamp = wallClock_(), .value = value};
    history.update([&sample](std::vector<UsageSample>& samples) {
        samples.push_back(sample);
        if (samples.size() > kHistoryLimit) {
            samples.erase(samples.begin(), samples.end() - kHistoryLimit);
        }
    });
}

}  // namespace tarnwick
