// SPDX-License-Identifier: MIT
// What the battery does now and how healthy it is.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "core/records/metric_records.h"
#include "platform/power_sources.h"
#include "platform/user_defaults.h"
#include "services/battery_reader.h"

namespace tarnwick {

using platform::HealthReading;

/// Returns the last good record while the battery cannot be read. While no battery was ever seen,
/// three reads in a row without one make it look only every five minutes, unless forced.
///
/// Asks for the exact health once a day, five minutes after a failed attempt, or when forced. The
/// health is kept in the user's store, so that it outlives the process; it is dropped when another
/// battery was put in. Any thread; calls take turns, and also wait for a call that reads the
/// health.
class BatteryService final : public BatteryReader {
 public:
    /// Absent when the health could not be read.
    using ReadHealth = std::function<std::optional<HealthReading>()>;
    /// Absent when the system did not say; `hasBattery` is false when there is no battery.
    using ReadBattery = std::function<std::optional<BatteryInfo>()>;
    /// The wall clock; the age of the health is judged by it.
    using Now = std::function<platform::Date()>;
    /// Seconds of a monotonic clock. While the machine sleeps it stands still on Linux and
    /// continues on macOS.
    using ElapsedTime = std::function<double()>;
    /// Which battery is in; empty when the system does not say. A function that is not there never
    /// says.
    using ReadIdentity = std::function<std::string()>;

    /// The defaults are those of the current platform.
    explicit BatteryService(platform::UserDefaults& defaults = standardDefaults(),
                            ReadHealth readHealth = systemHealth(),
                            ReadBattery readBattery = systemBattery(), Now now = systemNow(),
                            ElapsedTime elapsedTime = systemElapsedTime(),
                            ReadIdentity readIdentity = {});

    /// The process-wide instance on the current platform, made on first use, never destroyed.
    static std::shared_ptr<BatteryService> shared();

    BatteryInfo currentBatteryInfo(bool force) override;
    BatteryInfo batteryInfoWithHealth(bool force) override;

 private:
    static platform::UserDefaults& standardDefaults();
    static ReadHealth systemHealth();
    static ReadBattery systemBattery();
    static Now systemNow();
    static ElapsedTime systemElapsedTime();
    static ReadIdentity systemIdentity();

    void noticeAnotherBattery();
    bool isHealthDue(double now) const;
    void fetchHealth(platform::Date now);
    void mergeCache(BatteryInfo& info) const;

    const ReadHealth readHealth_;
    const ReadBattery readBattery_;
    const Now now_;
    const ElapsedTime elapsedTime_;
    const ReadIdentity readIdentity_;
    platform::UserDefaults& defaults_;

    std::mutex lock;
    // Guarded by `lock`.
    /// The last record with a battery, merged with the cache; absent until one has been seen.
    std::optional<BatteryInfo> lastGoodInfo_;
    /// The condition word as last read, before any merge.
    std::string sourceCondition_;
    /// Reads in a row that found no battery while no battery had ever been seen; stops at 3.
    std::int64_t missingSamples_ = 0;
    /// On the elapsed-time clock. Before this time an unforced call does not look for a battery.
    double nextDetectionAttempt_ = 0;
    /// Percent.
    std::optional<std::int64_t> cachedHealth_;
    /// Present (perhaps empty) once the health has been asked for.
    std::optional<std::string> cachedCondition_;
    /// Of the battery that these belong to; empty while it is unknown.
    std::string identity_;
    platform::Date lastHealthAttempt_;
    /// True when the last attempt gave no reading at all.
    bool lastAttemptFailed_ = false;
};

}  // namespace tarnwick
