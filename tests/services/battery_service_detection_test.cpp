// SPDX-License-Identifier: MIT
// The live state: finding a battery, leaving a machine without one alone, and the last good record.
#include "tests/services/battery_service_fixture.h"

namespace tarnwick::testing {
namespace {

class BatteryDetection : public BatteryServiceFixture {};

TEST_F(BatteryDetection, GivesTheLiveRecord) {
    see(makeBattery(63, "Fair"));
    const BatteryInfo info = service->currentBatteryInfo(false);
    EXPECT_TRUE(info.hasBattery);
    EXPECT_EQ(info.percentage, 63);
    EXPECT_TRUE(info.isCharging);
    EXPECT_TRUE(info.isPluggedIn);
    EXPECT_EQ(info.healthCondition, "Fair");
    EXPECT_EQ(info.cycleCount, 7);
    EXPECT_EQ(info.timeRemaining, 95);
    EXPECT_FALSE(info.health.has_value());
    EXPECT_FALSE(info.healthSource.has_value());
}

TEST_F(BatteryDetection, ReadsAnewAtEveryCallWhileThereIsABattery) {
    see(makeBattery(63));
    battery = makeBattery(62);
    EXPECT_EQ(service->currentBatteryInfo(false).percentage, 62);
    battery = makeBattery(61);
    EXPECT_EQ(service->currentBatteryInfo(true).percentage, 61);
    EXPECT_EQ(batteryReads, 3);
}

TEST_F(BatteryDetection, NeverAsksForTheHealth) {
    see(makeBattery(63));
    service->currentBatteryInfo(true);
    EXPECT_EQ(healthReads, 0);
}

TEST_F(BatteryDetection, PausesAfterTheThirdMissFor300Seconds) {
    for (int miss = 1; miss <= 3; ++miss) {
        expectNoBattery(service->currentBatteryInfo(false));
        EXPECT_EQ(batteryReads, miss);
        advance(120);
    }
    // The third miss was at 240 of the time that has passed, which is now 360.
    EXPECT_FALSE(looksForBattery());
    advance(179);
    expectNoBattery(service->currentBatteryInfo(false));
    EXPECT_EQ(batteryReads, 3);
    advance(1);
    EXPECT_TRUE(looksForBattery());
}

TEST_F(BatteryDetection, CountsAReadThatFailsAsAMissToo) {
    battery.reset();
    EXPECT_TRUE(looksForBattery());
    battery = BatteryInfo{};
    EXPECT_TRUE(looksForBattery());
    battery.reset();
    EXPECT_TRUE(looksForBattery());
    EXPECT_FALSE(looksForBattery());
}

TEST_F(BatteryDetection, ThePauseBeginsWithTheCall) {
    looksForBattery();
    looksForBattery();
    readTakes = 5;
    looksForBattery();
    advance(294.5);
    EXPECT_FALSE(looksForBattery());
    advance(0.5);
    EXPECT_TRUE(looksForBattery());
}

TEST_F(BatteryDetection, EveryFurtherMissPausesForAnother300Seconds) {
    for (int miss = 0; miss < 3; ++miss) {
        looksForBattery();
    }
    for (int pause = 0; pause < 5; ++pause) {
        advance(299.5);
        EXPECT_FALSE(looksForBattery());
        advance(0.5);
        EXPECT_TRUE(looksForBattery());
    }
}

TEST_F(BatteryDetection, AForcedCallLooksDuringThePauseAndPushesItOut) {
    for (int miss = 0; miss < 3; ++miss) {
        looksForBattery();
    }
    advance(200);
    expectNoBattery(service->currentBatteryInfo(true));
    EXPECT_EQ(batteryReads, 4);
    advance(299);
    EXPECT_FALSE(looksForBattery());
    advance(1);
    EXPECT_TRUE(looksForBattery());
}

TEST_F(BatteryDetection, ForcedMissesCountAsMisses) {
    service->currentBatteryInfo(true);
    service->currentBatteryInfo(true);
    EXPECT_EQ(batteryReads, 2);
    EXPECT_TRUE(looksForBattery());
    EXPECT_FALSE(looksForBattery());
}

TEST_F(BatteryDetection, ABatteryThatAppearsDuringThePauseIsSeenAfterIt) {
    for (int miss = 0; miss < 3; ++miss) {
        looksForBattery();
    }
    battery = makeBattery(50);
    expectNoBattery(service->currentBatteryInfo(false));
    advance(300);
    EXPECT_EQ(service->currentBatteryInfo(false).percentage, 50);
    EXPECT_TRUE(looksForBattery());
}

TEST_F(BatteryDetection, ABatteryThatAppearsDuringThePauseIsSeenByAForcedCall) {
    for (int miss = 0; miss < 3; ++miss) {
        looksForBattery();
    }
    battery = makeBattery(50);
    EXPECT_EQ(service->currentBatteryInfo(true).percentage, 50);
    // The pause is over.
    EXPECT_TRUE(looksForBattery());
}

TEST_F(BatteryDetection, AMissBeforeTheFirstBatteryDoesNotMatterLater) {
    looksForBattery();
    looksForBattery();
    see(makeBattery(50));
    battery = BatteryInfo{};
    for (int miss = 0; miss < 10; ++miss) {
        EXPECT_TRUE(looksForBattery());
    }
}

TEST_F(BatteryDetection, TheWallClockDoesNotMatter) {
    for (int miss = 0; miss < 3; ++miss) {
        looksForBattery();
    }
    wallTime += 10'000;
    EXPECT_FALSE(looksForBattery());
    wallTime -= 1'000'000;
    elapsed += 300;
    EXPECT_TRUE(looksForBattery());
}

TEST_F(BatteryDetection, ABatteryOnceSeenIsNeverMissingAgain) {
    see(makeBattery(63, "Good"));
    for (const bool force : {false, true}) {
        for (const auto& answer : {std::optional<BatteryInfo>(), std::optional(BatteryInfo{})}) {
            battery = answer;
            const BatteryInfo info = service->currentBatteryInfo(force);
            EXPECT_TRUE(info.hasBattery);
            EXPECT_EQ(info.percentage, 63);
            EXPECT_EQ(info.healthCondition, "Good");
            EXPECT_EQ(info.cycleCount, 7);
        }
    }
    EXPECT_EQ(batteryReads, 5);
}

TEST_F(BatteryDetection, ABatteryPulledOutAndPutBackIsReadAnew) {
    see(makeBattery(63));
    battery = BatteryInfo{};
    advance(100'000);
    EXPECT_EQ(service->currentBatteryInfo(false).percentage, 63);
    battery = makeBattery(20);
    EXPECT_EQ(service->currentBatteryInfo(false).percentage, 20);
}

TEST_F(BatteryDetection, TheLastGoodRecordSurvivesAFailedHealthRead) {
    see(makeBattery(63));
    battery.reset();
    health.reset();
    EXPECT_EQ(service->batteryInfoWithHealth(true).percentage, 63);
    EXPECT_EQ(service->currentBatteryInfo(false).percentage, 63);
    EXPECT_EQ(service->batteryInfoWithHealth(false).percentage, 63);
}

TEST_F(BatteryDetection, TheLastGoodRecordHasTheHealthThatWasMergedIntoIt) {
    health = HealthReading{.health = 87, .condition = "Normal"};
    see(makeBattery(63));
    service->batteryInfoWithHealth(false);
    battery.reset();
    const BatteryInfo info = service->currentBatteryInfo(false);
    EXPECT_EQ(info.health, 87);
    EXPECT_EQ(info.healthSource, BatteryHealthSource::systemProfiler);
    EXPECT_EQ(info.healthCondition, "Normal");
}

TEST_F(BatteryDetection, AMachineWithoutABatteryWritesNothing) {
    for (int call = 0; call < 5; ++call) {
        expectNoBattery(service->currentBatteryInfo(true));
        expectNoBattery(service->batteryInfoWithHealth(true));
    }
    EXPECT_EQ(healthReads, 0);
    restart();
    for (const char* key : {kHealthKey, kConditionKey, kLastFetchKey, kFailedKey}) {
        EXPECT_FALSE(store->contains(key)) << key;
    }
}

TEST_F(BatteryDetection, ARestartForgetsThePauseAndTheLastGoodRecord) {
    for (int miss = 0; miss < 4; ++miss) {
        looksForBattery();
    }
    restart();
    EXPECT_TRUE(looksForBattery());
    see(makeBattery(63));
    restart();
    battery.reset();
    expectNoBattery(service->currentBatteryInfo(false));
}

}  // namespace
}  // namespace tarnwick::testing
