#include "services/battery_service.h"

#include <algorithm>
#include <utility>

#include "platform/platform.h"
#include "services/power_source_reader.h"

namespace tarnwick {
namespace {

constexpr const char* kHealthKey = "battery.exactHealth";
constexpr const char* kConditionKey = "battery.exactCondition";
constexpr const char* kLastFetchKey = "battery.lastExactFetch";
constexpr const char* kLastAttemptFailedKey = "battery.lastAttemptFailed";

/// So many reads in a row must find no battery before the machine counts as one without.
constexpr std::int64_t kMissesUntilPause = 3;
/// Seconds for which such a machine is then left alone.
constexpr double kDetectionPause = 300;
/// Seconds from an attempt to the next.
constexpr double kHealthInterval = 86'400;
constexpr double kHealthRetryInterval = 300;

/// Before every other date: the first day of the calendar.
constexpr platform::Date kDistantPast{-62'135'596'800};

}  // namespace

BatteryService::BatteryService(platform::UserDefaults& store, ReadHealth health,
                               ReadBattery battery, Now wallClock, ElapsedTime elapsed)
    : readHealth(std::move(health)),
      readBattery(std::move(battery)),
      now(std::move(wallClock)),
      elapsedTime(std::move(elapsed)),
      defaults(store),
      cachedHealth(defaults.integer(kHealthKey)),
      cachedCondition(defaults.text(kConditionKey)),
      lastHealthAttempt(defaults.date(kLastFetchKey).value_or(kDistantPast)),
      lastAttemptFailed(defaults.boolean(kLastAttemptFailedKey).value_or(false)) {}

std::shared_ptr<BatteryService> BatteryService::shared() {
    // Never destroyed: background work may still use it while the process ends.
    static const auto& service = *new std::shared_ptr<BatteryService>(new BatteryService);
    return service;
}

platform::UserDefaults& BatteryService::standardDefaults() {
    return *platform::current().userDefaults;
}

BatteryService::ReadHealth BatteryService::systemHealth() {
    return [&health = *platform::current().batteryHealth] { return health.readHealth(); };
}

BatteryService::ReadBattery BatteryService::systemBattery() {
    return [&sources = *platform::current().powerSources] { return readPowerSources(sources); };
}

BatteryService::Now BatteryService::systemNow() {
    return [&kernel = *platform::current().kernel] {
        return platform::Date{kernel.wallClockSeconds()};
    };
}

BatteryService::ElapsedTime BatteryService::systemElapsedTime() {
    return [&kernel = *platform::current().kernel] { return kernel.monotonicSeconds(); };
}

BatteryInfo BatteryService::currentBatteryInfo(bool force) {
    const std::lock_guard guard(lock);
    const double time = elapsedTime();
    if (!force && !lastGoodInfo && time < nextDetectionAttempt) {
        return {};
    }
    std::optional<BatteryInfo> info = readBattery();
    if (info && info->hasBattery) {
        missingSamples = 0;
        nextDetectionAttempt = 0;
        sourceCondition = info->healthCondition;
        mergeCache(*info);
        lastGoodInfo = std::move(info);
        return *lastGoodInfo;
    }
    // A battery once seen does not go away: a read that fails now and then must not hide it.
    if (lastGoodInfo) {
        return *lastGoodInfo;
    }
    missingSamples = std::min(missingSamples + 1, kMissesUntilPause);
    if (missingSamples == kMissesUntilPause) {
        nextDetectionAttempt = time + kDetectionPause;
    }
    return {};
}

BatteryInfo BatteryService::batteryInfoWithHealth(bool force) {
    const std::lock_guard guard(lock);
    if (!lastGoodInfo) {
        return {};
    }
    const platform::Date moment = now();
    if (force || isHealthDue(moment.secondsSince1970)) {
        fetchHealth(moment);
        mergeCache(*lastGoodInfo);
    }
    return *lastGoodInfo;
}

bool BatteryService::isHealthDue(double moment) const {
    const double age = moment - lastHealthAttempt.secondsSince1970;
    const double interval = lastAttemptFailed ? kHealthRetryInterval : kHealthInterval;
    // A clock that was set back says nothing about the age.
    return !cachedCondition || !(age >= 0 && age < interval);
}

void BatteryService::fetchHealth(platform::Date moment) {
    const std::optional<HealthReading> reading = readHealth();
    if (reading && reading->health) {
        cachedHealth = reading->health;
        defaults.set(kHealthKey, *cachedHealth);
    }
    if (reading && reading->condition && !reading->condition->empty()) {
        cachedCondition = reading->condition;
    } else if (!cachedCondition) {
        // From now on the interval counts, also after a failure.
        cachedCondition.emplace();
    }
    lastAttemptFailed = !reading;
    lastHealthAttempt = moment;
    defaults.set(kConditionKey, *cachedCondition);
    defaults.set(kLastAttemptFailedKey, lastAttemptFailed);
    defaults.set(kLastFetchKey, lastHealthAttempt);
}

void BatteryService::mergeCache(BatteryInfo& info) const {
    if (cachedHealth) {
        info.health = cachedHealth;
        info.healthSource = BatteryHealthSource::systemProfiler;
    }
    // The live word wins; an earlier one from the cache does not count as live.
    info.healthCondition = sourceCondition.empty() ? cachedCondition.value_or("") : sourceCondition;
}

}  // namespace tarnwick
