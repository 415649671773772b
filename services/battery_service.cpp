// SPDX-License-Identifier: MIT
#include "services/battery_service.h"

#include <algorithm>
#include <utility>

#include "platform/platform.h"
#include "platform/timed_source.h"
#include "services/power_source_reader.h"

namespace tarnwick {
namespace {

constexpr const char* kHealthKey = "battery.exactHealth";
constexpr const char* kConditionKey = "battery.exactCondition";
constexpr const char* kLastFetchKey = "battery.lastExactFetch";
constexpr const char* kLastAttemptFailedKey = "battery.lastAttemptFailed";
/// Of the battery whose health is stored.
constexpr const char* kIdentityKey = "battery.identity";

/// After this many reads in a row without a battery, the machine counts as one without a battery.
constexpr std::int64_t kMissesUntilPause = 3;
/// Seconds for which such a machine is not asked again.
constexpr double kDetectionPause = 300;
/// Seconds between two attempts: after a success, and after a failure.
constexpr double kHealthInterval = 86'400;
constexpr double kHealthRetryInterval = 300;

/// Before every other date: the first day of the calendar.
constexpr platform::Date kDistantPast{-62'135'596'800};

}  // namespace

BatteryService::BatteryService(platform::UserDefaults& store, ReadHealth health,
                               ReadBattery battery, Now wallClock, ElapsedTime elapsed,
                               ReadIdentity identity)
    : readHealth_(std::move(health)),
      readBattery_(std::move(battery)),
      now_(std::move(wallClock)),
      elapsedTime_(std::move(elapsed)),
      readIdentity_(std::move(identity)),
      defaults_(store),
      cachedHealth_(defaults_.integer(kHealthKey)),
      cachedCondition_(defaults_.text(kConditionKey)),
      identity_(defaults_.text(kIdentityKey).value_or("")),
      lastHealthAttempt_(defaults_.date(kLastFetchKey).value_or(kDistantPast)),
      lastAttemptFailed_(defaults_.boolean(kLastAttemptFailedKey).value_or(false)) {}

std::shared_ptr<BatteryService> BatteryService::shared() {
    // Never destroyed: background work may still use it while the process ends.
    static const auto& service = *new std::shared_ptr<BatteryService>(
        new BatteryService(standardDefaults(), systemHealth(), systemBattery(), systemNow(),
                           systemElapsedTime(), systemIdentity()));
    return service;
}

platform::UserDefaults& BatteryService::standardDefaults() {
    return *platform::current().userDefaults;
}

BatteryService::ReadHealth BatteryService::systemHealth() {
    using Reading = std::optional<HealthReading>;
    auto& health = *platform::current().batteryHealth;
    // An attempt without an answer has failed: no earlier reading stands for it.
    const auto source = std::make_shared<platform::TimedSource<Reading>>(
        *platform::current().workers, health.longestReading(), 0);
    return [&health, source] {
        return source->read([&health] { return health.readHealth(); }).value_or(std::nullopt);
    };
}

BatteryService::ReadBattery BatteryService::systemBattery() {
    using Reading = std::optional<BatteryInfo>;
    const auto source = std::make_shared<platform::TimedSource<Reading>>(
        *platform::current().workers, platform::kSourcePatience);
    return [&sources = *platform::current().powerSources, source] {
        return source->read([&sources] { return readPowerSources(sources); })
            .value_or(std::nullopt);
    };
}

BatteryService::Now BatteryService::systemNow() {
    return [&kernel = *platform::current().kernel] {
        return platform::Date{kernel.wallClockSeconds()};
    };
}

BatteryService::ElapsedTime BatteryService::systemElapsedTime() {
    return [&kernel = *platform::current().kernel] { return kernel.monotonicSeconds(); };
}

BatteryService::ReadIdentity BatteryService::systemIdentity() {
    const auto source = std::make_shared<platform::TimedSource<std::string>>(
        *platform::current().workers, platform::kSourcePatience);
    return [&sources = *platform::current().powerSources, source] {
        return source->read([&sources] { return sources.identity(); }).value_or("");
    };
}

BatteryInfo BatteryService::currentBatteryInfo(bool force) {
    const std::lock_guard guard(lock);
    const double time = elapsedTime_();
    if (!force && !lastGoodInfo_ && time < nextDetectionAttempt_) {
        return {};
    }
    std::optional<BatteryInfo> info = readBattery_();
    if (info && info->hasBattery) {
        missingSamples_ = 0;
        nextDetectionAttempt_ = 0;
        sourceCondition_ = info->healthCondition;
        noticeAnotherBattery();
        mergeCache(*info);
        lastGoodInfo_ = std::move(info);
        return *lastGoodInfo_;
    }
    // A battery that was seen once stays: a read that fails now and then must not hide it.
    if (lastGoodInfo_) {
        return *lastGoodInfo_;
    }
    missingSamples_ = std::min(missingSamples_ + 1, kMissesUntilPause);
    if (missingSamples_ == kMissesUntilPause) {
        nextDetectionAttempt_ = time + kDetectionPause;
    }
    return {};
}

BatteryInfo BatteryService::batteryInfoWithHealth(bool force) {
    const std::lock_guard guard(lock);
    if (!lastGoodInfo_) {
        return {};
    }
    const platform::Date moment = now_();
    if (force || isHealthDue(moment.secondsSince1970)) {
        fetchHealth(moment);
        mergeCache(*lastGoodInfo_);
    }
    return *lastGoodInfo_;
}

void BatteryService::noticeAnotherBattery() {
    std::string identity = readIdentity_ ? readIdentity_() : std::string();
    if (identity.empty() || identity == identity_) {
        return;
    }
    if (!identity_.empty()) {
        cachedHealth_.reset();
        cachedCondition_.reset();
    }
    identity_ = std::move(identity);
}

bool BatteryService::isHealthDue(double moment) const {
    const double age = moment - lastHealthAttempt_.secondsSince1970;
    const double interval = lastAttemptFailed_ ? kHealthRetryInterval : kHealthInterval;
    // If the clock was set back, the age is unknown, and the health is due.
    return !cachedCondition_ || !(age >= 0 && age < interval);
}

void BatteryService::fetchHealth(platform::Date moment) {
    const std::optional<HealthReading> reading = readHealth_();
    if (reading && reading->health) {
        cachedHealth_ = reading->health;
        defaults_.set(kHealthKey, *cachedHealth_);
        if (!identity_.empty()) {
            defaults_.set(kIdentityKey, identity_);
        }
    }
    if (reading && reading->condition && !reading->condition->empty()) {
        cachedCondition_ = reading->condition;
    } else if (!cachedCondition_) {
        // An empty word marks that an attempt was made: from now on the interval counts, even if it
        // failed.
        cachedCondition_.emplace();
    }
    lastAttemptFailed_ = !reading;
    lastHealthAttempt_ = moment;
    defaults_.set(kConditionKey, *cachedCondition_);
    defaults_.set(kLastAttemptFailedKey, lastAttemptFailed_);
    defaults_.set(kLastFetchKey, lastHealthAttempt_);
}

void BatteryService::mergeCache(BatteryInfo& info) const {
    if (cachedHealth_) {
        info.health = cachedHealth_;
        info.healthSource = BatteryHealthSource::systemProfiler;
    }
    // The live word wins over the cached one. `info` may already hold a cached word, so that one is
    // not used.
    info.healthCondition =
        sourceCondition_.empty() ? cachedCondition_.value_or("") : sourceCondition_;
}

}  // namespace tarnwick
