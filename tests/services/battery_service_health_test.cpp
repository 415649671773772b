// SPDX-License-Identifier: MIT
// The exact health: when it is asked for, what is kept of it over a restart, what is shown.
#include <atomic>
#include <thread>
#include <vector>

#include "tests/services/battery_service_fixture.h"

namespace tarnwick::testing {
namespace {

class BatteryHealthCache : public BatteryServiceFixture {
 protected:
    BatteryInfo fetch() { return service->batteryInfoWithHealth(true); }
};

TEST_F(BatteryHealthCache, IsNotAskedForBeforeABatteryWasSeen) {
    battery = makeBattery(63);
    expectNoBattery(service->batteryInfoWithHealth(false));
    expectNoBattery(service->batteryInfoWithHealth(true));
    EXPECT_EQ(healthReads, 0);
    EXPECT_EQ(batteryReads, 0);
}

TEST_F(BatteryHealthCache, IsAskedForAtOnceOnAFreshInstall) {
    health = HealthReading{.health = 87, .condition = "Normal"};
    see(makeBattery(63));
    const BatteryInfo info = service->batteryInfoWithHealth(false);
    EXPECT_EQ(healthReads, 1);
    EXPECT_EQ(info.percentage, 63);
    EXPECT_EQ(info.health, 87);
    EXPECT_EQ(info.healthSource, BatteryHealthSource::systemProfiler);
    EXPECT_EQ(info.healthCondition, "Normal");
}

TEST_F(BatteryHealthCache, DoesNotReadTheBatteryAgain) {
    see(makeBattery(63));
    battery = makeBattery(10);
    EXPECT_EQ(fetch().percentage, 63);
    EXPECT_EQ(batteryReads, 1);
}

TEST_F(BatteryHealthCache, IsAskedForOnceADay) {
    health = HealthReading{.health = 87, .condition = "Normal"};
    see(makeBattery(63));
    EXPECT_TRUE(isHealthDue());
    wallTime += kDay - 0.5;
    EXPECT_FALSE(isHealthDue());
    wallTime += 0.5;
    EXPECT_TRUE(isHealthDue());
    EXPECT_FALSE(isHealthDue());
}

TEST_F(BatteryHealthCache, IsAskedForAgainFiveMinutesAfterAFailure) {
    see(makeBattery(63));
    EXPECT_TRUE(isHealthDue());
    for (int attempt = 0; attempt < 3; ++attempt) {
        EXPECT_FALSE(isHealthDue());
        wallTime += 299.5;
        EXPECT_FALSE(isHealthDue());
        wallTime += 0.5;
        EXPECT_TRUE(isHealthDue());
    }
    health = HealthReading{.health = 90};
    wallTime += 300;
    EXPECT_TRUE(isHealthDue());
    wallTime += 300;
    EXPECT_FALSE(isHealthDue());
    wallTime += kDay;
    EXPECT_TRUE(isHealthDue());
}

TEST_F(BatteryHealthCache, TheIntervalBeginsWithTheCall) {
    see(makeBattery(63));
    readTakes = 3;
    EXPECT_TRUE(isHealthDue());
    EXPECT_EQ(store->date(kLastFetchKey), platform::Date{wallTime - 3});
    wallTime += 296.5;
    EXPECT_FALSE(isHealthDue());
    wallTime += 0.5;
    EXPECT_TRUE(isHealthDue());
}

TEST_F(BatteryHealthCache, IsAskedForWhenForced) {
    health = HealthReading{.health = 87};
    see(makeBattery(63));
    EXPECT_EQ(fetch().health, 87);
    health->health = 86;
    EXPECT_EQ(fetch().health, 86);
    EXPECT_EQ(healthReads, 2);
    // The day begins with the forced one.
    wallTime += kDay - 1;
    EXPECT_FALSE(isHealthDue());
}

TEST_F(BatteryHealthCache, IsAskedForWhenTheClockWasSetBack) {
    health = HealthReading{.health = 87};
    see(makeBattery(63));
    EXPECT_TRUE(isHealthDue());
    wallTime -= 1;
    EXPECT_TRUE(isHealthDue());
    EXPECT_FALSE(isHealthDue());
}

TEST_F(BatteryHealthCache, TheMonotonicClockDoesNotMatter) {
    health = HealthReading{.health = 87};
    see(makeBattery(63));
    EXPECT_TRUE(isHealthDue());
    elapsed += 10 * kDay;
    EXPECT_FALSE(isHealthDue());
}

TEST_F(BatteryHealthCache, AReadingWithoutFiguresIsASuccess) {
    health = HealthReading{};
    see(makeBattery(63, "Good"));
    const BatteryInfo info = service->batteryInfoWithHealth(false);
    EXPECT_FALSE(info.health.has_value());
    EXPECT_FALSE(info.healthSource.has_value());
    EXPECT_EQ(info.healthCondition, "Good");
    EXPECT_EQ(store->boolean(kFailedKey), false);
    EXPECT_EQ(store->text(kConditionKey), "");
    EXPECT_FALSE(store->contains(kHealthKey));
    wallTime += kDay - 1;
    EXPECT_FALSE(isHealthDue());
    wallTime += 1;
    EXPECT_TRUE(isHealthDue());
}

TEST_F(BatteryHealthCache, ASuccessIsStoredUnderFourKeys) {
    health = HealthReading{.health = 87, .condition = "Normal"};
    see(makeBattery(63));
    fetch();
    restart();
    EXPECT_EQ(store->integer(kHealthKey), 87);
    EXPECT_EQ(store->text(kConditionKey), "Normal");
    EXPECT_EQ(store->date(kLastFetchKey), platform::Date{wallTime});
    EXPECT_EQ(store->boolean(kFailedKey), false);
}

TEST_F(BatteryHealthCache, AFailureOnAFreshInstallIsStored) {
    see(makeBattery(63));
    fetch();
    restart();
    EXPECT_FALSE(store->contains(kHealthKey));
    EXPECT_EQ(store->text(kConditionKey), "");
    EXPECT_EQ(store->date(kLastFetchKey), platform::Date{wallTime});
    EXPECT_EQ(store->boolean(kFailedKey), true);
    // The interval counts over the restart.
    see(makeBattery(63));
    wallTime += 299;
    EXPECT_FALSE(isHealthDue());
    wallTime += 1;
    EXPECT_TRUE(isHealthDue());
}

TEST_F(BatteryHealthCache, AFailureKeepsTheOldFigures) {
    health = HealthReading{.health = 87, .condition = "Normal"};
    see(makeBattery(63));
    fetch();
    wallTime += 500;
    health.reset();
    const BatteryInfo info = fetch();
    EXPECT_EQ(info.health, 87);
    EXPECT_EQ(info.healthCondition, "Normal");
    restart();
    EXPECT_EQ(store->integer(kHealthKey), 87);
    EXPECT_EQ(store->text(kConditionKey), "Normal");
    EXPECT_EQ(store->date(kLastFetchKey), platform::Date{wallTime});
    EXPECT_EQ(store->boolean(kFailedKey), true);
}

TEST_F(BatteryHealthCache, AReadingWithoutFiguresKeepsTheOldOnes) {
    health = HealthReading{.health = 87, .condition = "Normal"};
    see(makeBattery(63));
    fetch();
    for (const HealthReading& reading :
         {HealthReading{}, HealthReading{.health = {}, .condition = ""}}) {
        health = reading;
        const BatteryInfo info = fetch();
        EXPECT_EQ(info.health, 87);
        EXPECT_EQ(info.healthCondition, "Normal");
    }
    EXPECT_EQ(store->integer(kHealthKey), 87);
    EXPECT_EQ(store->text(kConditionKey), "Normal");
}

TEST_F(BatteryHealthCache, OneFigureIsRenewedWithoutTheOther) {
    health = HealthReading{.health = 87, .condition = "Normal"};
    see(makeBattery(63));
    fetch();
    health = HealthReading{.health = 80, .condition = {}};
    EXPECT_EQ(fetch().healthCondition, "Normal");
    EXPECT_EQ(store->integer(kHealthKey), 80);
    health = HealthReading{.health = {}, .condition = "Service Recommended"};
    const BatteryInfo info = fetch();
    EXPECT_EQ(info.health, 80);
    EXPECT_EQ(info.healthCondition, "Service Recommended");
    EXPECT_EQ(store->text(kConditionKey), "Service Recommended");
}

TEST_F(BatteryHealthCache, OutlivesTheService) {
    health = HealthReading{.health = 87, .condition = "Service Recommended"};
    see(makeBattery(63));
    fetch();
    restart();
    battery = makeBattery(62);
    const BatteryInfo info = service->currentBatteryInfo(false);
    EXPECT_EQ(info.percentage, 62);
    EXPECT_EQ(info.health, 87);
    EXPECT_EQ(info.healthSource, BatteryHealthSource::systemProfiler);
    EXPECT_EQ(info.healthCondition, "Service Recommended");
    wallTime += kDay - 1;
    EXPECT_FALSE(isHealthDue());
    restart();
    see(makeBattery(62));
    wallTime += 1;
    EXPECT_TRUE(isHealthDue());
}

TEST_F(BatteryHealthCache, ALiveConditionWinsOverTheCachedOne) {
    health = HealthReading{.health = 87, .condition = "Service Recommended"};
    see(makeBattery(63, "Normal"));
    EXPECT_EQ(fetch().healthCondition, "Normal");
    EXPECT_EQ(service->currentBatteryInfo(false).healthCondition, "Normal");
    // Without one the cached word is shown.
    battery = makeBattery(63);
    EXPECT_EQ(service->currentBatteryInfo(false).healthCondition, "Service Recommended");
    battery = makeBattery(63, "Fair");
    EXPECT_EQ(service->currentBatteryInfo(false).healthCondition, "Fair");
}

TEST_F(BatteryHealthCache, TheLastLiveConditionWinsAlsoAfterAReadThatFailed) {
    health = HealthReading{.health = 87, .condition = "Service Recommended"};
    see(makeBattery(63, "Normal"));
    for (const auto& answer : {std::optional<BatteryInfo>(), std::optional(BatteryInfo{})}) {
        battery = answer;
        service->currentBatteryInfo(false);
        EXPECT_EQ(fetch().healthCondition, "Normal");
    }
}

TEST_F(BatteryHealthCache, ANewCachedWordReplacesTheOldOneInTheRecord) {
    health = HealthReading{.health = 87, .condition = "Normal"};
    see(makeBattery(63));
    EXPECT_EQ(fetch().healthCondition, "Normal");
    health->condition = "Service Recommended";
    EXPECT_EQ(fetch().healthCondition, "Service Recommended");
    battery.reset();
    EXPECT_EQ(service->currentBatteryInfo(false).healthCondition, "Service Recommended");
}

TEST_F(BatteryHealthCache, ReplacesAHealthThatTheRecordCameWith) {
    BatteryInfo own = makeBattery(63);
    own.health = 12;
    own.healthSource = BatteryHealthSource::ioRegistry;
    see(own);
    EXPECT_EQ(service->currentBatteryInfo(false).health, 12);
    EXPECT_EQ(service->currentBatteryInfo(false).healthSource, BatteryHealthSource::ioRegistry);
    health = HealthReading{.health = 87};
    EXPECT_EQ(fetch().health, 87);
    EXPECT_EQ(service->currentBatteryInfo(false).healthSource, BatteryHealthSource::systemProfiler);
}

TEST_F(BatteryHealthCache, ValuesOfAnotherTypeInTheStoreAreNone) {
    store->set(kHealthKey, std::string("87"));
    store->set(kConditionKey, std::int64_t{1});
    store->set(kLastFetchKey, std::string("today"));
    store->set(kFailedKey, std::string("no"));
    restart();
    see(makeBattery(63));
    const BatteryInfo info = service->currentBatteryInfo(false);
    EXPECT_FALSE(info.health.has_value());
    EXPECT_EQ(info.healthCondition, "");
    EXPECT_TRUE(isHealthDue());
}

TEST_F(BatteryHealthCache, WithoutAConditionInTheStoreTheHealthIsDue) {
    store->set(kHealthKey, std::int64_t{87});
    store->set(kLastFetchKey, platform::Date{wallTime});
    restart();
    see(makeBattery(63));
    EXPECT_EQ(service->currentBatteryInfo(false).health, 87);
    EXPECT_TRUE(isHealthDue());
}

TEST_F(BatteryHealthCache, WithoutADateInTheStoreTheHealthIsDue) {
    store->set(kConditionKey, std::string("Normal"));
    // Also for a board whose clock begins in 1970 at each start.
    wallTime = 100;
    restart();
    see(makeBattery(63));
    EXPECT_TRUE(isHealthDue());
}

TEST_F(BatteryHealthCache, WithoutAMarkOfFailureInTheStoreTheLastAttemptWasNone) {
    store->set(kConditionKey, std::string("Normal"));
    store->set(kLastFetchKey, platform::Date{wallTime});
    restart();
    see(makeBattery(63));
    wallTime += kDay - 1;
    EXPECT_FALSE(isHealthDue());
    wallTime += 1;
    EXPECT_TRUE(isHealthDue());
}

TEST_F(BatteryHealthCache, ADateThatIsNoneMakesTheHealthDue) {
    store->set(kConditionKey, std::string("Normal"));
    store->set(kLastFetchKey, platform::Date{1e300});
    restart();
    see(makeBattery(63));
    EXPECT_TRUE(isHealthDue());
}

TEST_F(BatteryHealthCache, IsDroppedWhenAnotherBatteryWasPutIn) {
    identity = "old";
    health = HealthReading{.health = 72, .condition = "Service Recommended"};
    see(makeBattery(63));
    EXPECT_EQ(fetch().health, 72);
    identity = "new";
    const BatteryInfo live = service->currentBatteryInfo(false);
    EXPECT_FALSE(live.health.has_value());
    EXPECT_FALSE(live.healthSource.has_value());
    EXPECT_EQ(live.healthCondition, "");
    health = HealthReading{.health = 100};
    EXPECT_TRUE(isHealthDue());
    EXPECT_EQ(service->currentBatteryInfo(false).health, 100);
    EXPECT_EQ(service->currentBatteryInfo(false).healthCondition, "");
    EXPECT_FALSE(isHealthDue());
}

TEST_F(BatteryHealthCache, IsDroppedWhenAnotherBatteryWasPutInBetweenTwoRuns) {
    identity = "old";
    health = HealthReading{.health = 72};
    see(makeBattery(63));
    fetch();
    restart();
    EXPECT_EQ(store->text(kIdentityKey), "old");
    see(makeBattery(63));
    EXPECT_EQ(service->currentBatteryInfo(false).health, 72);
    EXPECT_FALSE(isHealthDue());
    // The new one has no health that could take the place of the old one's.
    identity = "new";
    health = HealthReading{};
    for (int run = 0; run < 2; ++run) {
        restart();
        see(makeBattery(63));
        EXPECT_FALSE(fetch().health.has_value());
    }
}

TEST_F(BatteryHealthCache, StaysWhereTheSystemDoesNotSayWhichBatteryIsIn) {
    health = HealthReading{.health = 72};
    see(makeBattery(63));
    fetch();
    EXPECT_FALSE(store->contains(kIdentityKey));
    // What it says for the first time is no change.
    identity = "one";
    EXPECT_EQ(service->currentBatteryInfo(false).health, 72);
    identity = "";
    EXPECT_EQ(service->currentBatteryInfo(false).health, 72);
    identity = "one";
    EXPECT_EQ(service->currentBatteryInfo(false).health, 72);
    EXPECT_FALSE(isHealthDue());
}

TEST_F(BatteryHealthCache, AQuickCallWaitsForAFetchUnderWay) {
    std::atomic<bool> calling = false;
    std::atomic<bool> answered = false;
    std::optional<std::int64_t> seen;
    std::jthread quick;
    BatteryService slow(
        *store,
        [&]() -> std::optional<HealthReading> {
            quick = std::jthread([&] {
                calling = true;
                seen = slow.currentBatteryInfo(false).health;
                answered = true;
            });
            // Turns enough for a call that does not wait.
            for (int turn = 0; turn < 10'000 || !calling; ++turn) {
                std::this_thread::yield();
            }
            EXPECT_FALSE(answered);
            return HealthReading{.health = 87};
        },
        [] { return makeBattery(63); }, [] { return platform::Date{1000}; }, [] { return 0.0; });
    slow.currentBatteryInfo(false);
    slow.batteryInfoWithHealth(false);
    quick.join();
    EXPECT_EQ(seen, 87);
}

TEST_F(BatteryHealthCache, CallsFromSeveralThreadsTakeTurns) {
    BatteryService busy(
        *store, [this] { return ++healthReads, HealthReading{.health = 87}; },
        [this] { return ++batteryReads, makeBattery(63); }, [] { return platform::Date{1000}; },
        [] { return 0.0; });
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&busy] {
                for (int call = 0; call < 50; ++call) {
                    busy.currentBatteryInfo(false);
                    busy.batteryInfoWithHealth(call % 10 == 0);
                }
            });
        }
    }
    EXPECT_EQ(batteryReads, 200);
    EXPECT_GE(healthReads, 20);
}

}  // namespace
}  // namespace tarnwick::testing
