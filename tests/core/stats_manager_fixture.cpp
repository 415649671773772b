// SPDX-License-Identifier: MIT
#include "tests/core/stats_manager_fixture.h"

#include <algorithm>
#include <sstream>

namespace tarnwick::testing {
namespace {

std::string text(double number) {
    std::ostringstream stream;
    stream << number;
    return stream.str();
}

}  // namespace

BatteryInfo makeBattery(std::int64_t percentage, std::optional<std::int64_t> health) {
    BatteryInfo info;
    info.percentage = percentage;
    info.health = health;
    info.hasBattery = true;
    return info;
}

CPUInfo makeCPU(double usage, std::int64_t cores) {
    CPUInfo info;
    info.usagePercentage = usage;
    info.coreCount = cores;
    return info;
}

GPUInfo makeGPU(double usage, bool isAvailable) {
    GPUInfo info;
    info.usagePercentage = usage;
    info.isAvailable = isAvailable;
    return info;
}

StorageInfo makeVolume(std::int64_t total, std::int64_t used, std::string name) {
    StorageInfo info;
    info.name = std::move(name);
    info.totalSpace = total;
    info.usedSpace = used;
    return info;
}

class RecordingDispatch::RecordingTimer final : public platform::Timer {
 public:
    RecordingTimer(RecordingDispatch& owner, double interval, std::unique_ptr<Timer> target)
        : owner_(owner), name_(text(interval)), target_(std::move(target)) {}

    double fireTime() const override { return target_->fireTime(); }
    void setFireTime(double seconds) override {
        owner_.events.push_back("fire " + name_ + " at " + text(seconds));
        target_->setFireTime(seconds);
    }
    double tolerance() const override { return target_->tolerance(); }
    void setTolerance(double seconds) override {
        owner_.events.push_back("tolerance " + name_ + " is " + text(seconds));
        target_->setTolerance(seconds);
    }
    void invalidate() override {
        owner_.events.push_back("invalidate " + name_);
        target_->invalidate();
    }

 private:
    RecordingDispatch& owner_;
    std::string name_;
    std::unique_ptr<Timer> target_;
};

bool RecordingDispatch::detached(std::function<void()> work) {
    events.emplace_back("detached");
    return target_.detached(std::move(work));
}

std::unique_ptr<platform::Timer> RecordingDispatch::scheduleRepeating(
    double interval, std::function<void()> handler) {
    events.push_back("schedule " + text(interval));
    handlers.push_back(handler);
    return std::make_unique<RecordingTimer>(
        *this, interval, target_.scheduleRepeating(interval, std::move(handler)));
}

StatsManagerTest::StatsManagerTest()
    : battery(std::make_shared<ScriptedBatteryService>(
          [this](const std::string& call) { record(call); })) {}

std::unique_ptr<StatsManager> StatsManagerTest::make() {
    return make(30, 120);
}

std::unique_ptr<StatsManager> StatsManagerTest::make(double slowVisibleInterval,
                                                     double slowIdleInterval) {
    return std::make_unique<StatsManager>(
        &settings, battery, slowVisibleInterval, slowIdleInterval,
        StatsManagerEnvironment{dispatch, sources(), [this] { return wallTime; },
                                platform::Logger(log)});
}

std::unique_ptr<StatsManager> StatsManagerTest::makeSettled() {
    auto manager = make();
    settle();
    takeCalls();
    takeEvents();
    return manager;
}

void StatsManagerTest::settle() {
    while (manual.mainPending() > 0 || manual.detachedPending() > 0) {
        manual.runDetached();
        manual.runMainTurn();
    }
}

std::size_t StatsManagerTest::count(const std::string& call) const {
    return static_cast<std::size_t>(std::count(calls.begin(), calls.end(), call));
}

void StatsManagerTest::record(const std::string& call) {
    EXPECT_TRUE(manual.isInBackground()) << call << " on the main thread";
    calls.push_back(call);
    if (duringCall) {
        duringCall(call);
    }
}

MetricSources StatsManagerTest::sources() {
    return {
        .readCPUInfo =
            [this] {
                record("cpu");
                return cpu;
            },
        .readGPUInfo =
            [this] {
                record("gpu");
                return gpu;
            },
        .readMemoryInfo =
            [this] {
                record("memory");
                return memory;
            },
        .readNetworkInfo =
            [this] {
                record("network");
                return network;
            },
        .readTopProcesses =
            [this](int limit) {
                record("processes " + std::to_string(limit));
                return processes;
            },
        .pruneStaleProcesses = [this] { record("prune"); },
        .releaseProcessCaches = [this] { ++cacheReleases; },
        .readStorageInfo =
            [this] {
                record("storage");
                return storage;
            },
        .readThermalState =
            [this] {
                record("thermal");
                return thermalState;
            },
        .readUptime =
            [this] {
                record("uptime");
                return uptime;
            },
    };
}

}  // namespace tarnwick::testing
