// SPDX-License-Identifier: MIT
// A stats manager on scripted samplers, in virtual time. Records everything that it does.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/stats_manager.h"
#include "platform/testing/manual_dispatch.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/recording_log.h"
#include "platform/testing/scripted_login_service.h"

namespace tarnwick::testing {

BatteryInfo makeBattery(std::int64_t percentage, std::optional<std::int64_t> health = {});
CPUInfo makeCPU(double usage, std::int64_t cores);
GPUInfo makeGPU(double usage, bool isAvailable);
StorageInfo makeVolume(std::int64_t total, std::int64_t used, std::string name = "Disk");

/// Passes every call on to a dispatch in virtual time and records it.
class RecordingDispatch final : public platform::Dispatch {
 public:
    explicit RecordingDispatch(platform::testing::ManualDispatch& target) : target_(target) {}

    double now() const override { return target_.now(); }
    void async(std::function<void()> work) override { target_.async(std::move(work)); }
    void asyncAfter(double seconds, std::function<void()> work) override {
        target_.asyncAfter(seconds, std::move(work));
    }
    bool detached(std::function<void()> work) override;
    std::unique_ptr<platform::Timer> scheduleRepeating(double interval,
                                                       std::function<void()> handler) override;

    /// "detached", "schedule 10", "fire 10 at 1005", "tolerance 10 is 1.5", "invalidate 10": the
    /// first number names the timer by its interval. Only calls from the main thread.
    std::vector<std::string> events;
    /// The handlers of all timers ever made. A test may call one, as a late timer would.
    std::vector<std::function<void()>> handlers;

 private:
    class RecordingTimer;

    platform::testing::ManualDispatch& target_;
};

/// Answers with `quick` and `exact`, and records the calls.
class ScriptedBatteryService final : public BatteryReader {
 public:
    explicit ScriptedBatteryService(std::function<void(const std::string&)> record)
        : record_(std::move(record)) {}

    BatteryInfo currentBatteryInfo(bool force) override {
        record_(force ? "battery forced" : "battery");
        return quick;
    }
    BatteryInfo batteryInfoWithHealth(bool force) override {
        record_(force ? "health forced" : "health");
        return exact;
    }

    BatteryInfo quick = makeBattery(50);
    BatteryInfo exact = makeBattery(50, 91);

 private:
    std::function<void(const std::string&)> record_;
};

class StatsManagerTest : public ::testing::Test {
 protected:
    using Background = platform::testing::ManualDispatch::Background;
    using Calls = std::vector<std::string>;

    StatsManagerTest();

    /// With the intervals that the program uses.
    std::unique_ptr<StatsManager> make();
    std::unique_ptr<StatsManager> make(double slowVisibleInterval, double slowIdleInterval);
    /// A manager whose first refreshes are done; `calls` and the events are empty again.
    std::unique_ptr<StatsManager> makeSettled();

    /// Runs everything that is requested, until nothing is left.
    void settle();
    /// How often `call` was made.
    std::size_t count(const std::string& call) const;
    /// The calls made since the last take.
    Calls takeCalls() { return std::exchange(calls, {}); }
    std::vector<std::string> takeEvents() { return std::exchange(dispatch.events, {}); }

    /// Starts at 1000 seconds; the background is run by hand.
    platform::testing::ManualDispatch manual{Background::byHand, 1000};
    RecordingDispatch dispatch{manual};
    platform::testing::MemoryUserDefaults store;
    platform::testing::ScriptedLoginService loginService;
    UserSettings settings{store, loginService};
    platform::testing::RecordingLog log;
    std::shared_ptr<ScriptedBatteryService> battery;

    // What the samplers answer.
    CPUInfo cpu = makeCPU(11, 4);
    GPUInfo gpu = makeGPU(12, true);
    MemoryInfo memory{.total = 200, .used = 26};
    NetworkInfo network{.downloadBytesPerSecond = 5, .hasSample = true};
    TopProcessLists processes{.cpu = {{.id = 1, .name = "busy"}},
                              .memory = {{.id = 2, .name = "big"}}};
    std::optional<StorageInfo> storage = makeVolume(1000, 140);
    std::int64_t thermalState = 0;
    double uptime = 77;
    /// Wall-clock seconds; independent of the timers' clock.
    double wallTime = 5000;

    /// Every call of a sampler, in order. Each must come from the background.
    Calls calls;
    /// How often the process sampler was told to free what it keeps. Not part of `calls`.
    int cacheReleases = 0;
    /// If set, runs inside each call, as if the call took long.
    std::function<void(const std::string& call)> duringCall;

 private:
    MetricSources sources();
    void record(const std::string& call);
};

}  // namespace tarnwick::testing
