// SPDX-License-Identifier: MIT
// What several packs are together, and what a gauge or a limit says beside the amounts.
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/power/power_supply.h"

namespace tarnwick::platform {
namespace {

/// The texts of a pack's files, without their line breaks.
using Texts = std::vector<std::pair<std::string, std::string>>;

PowerSupply packWith(const Texts& usual, const Texts& changes) {
    PowerSupply made;
    for (const Texts& texts : {usual, changes}) {
        for (const auto& [name, text] : texts) {
            made.take(name, text + "\n");
        }
    }
    return made;
}

/// 10 of 20 Wh, designed for 25, at 5 W.
PowerSupply small(const Texts& changes = {}) {
    return packWith({{"status", "Discharging"},
                     {"capacity", "50"},
                     {"energy_now", "10000000"},
                     {"energy_full", "20000000"},
                     {"energy_full_design", "25000000"},
                     {"power_now", "5000000"},
                     {"cycle_count", "100"}},
                    changes);
}

/// 60 of 60 Wh, designed for 60, at 0 W.
PowerSupply large(const Texts& changes = {}) {
    return packWith({{"status", "Full"},
                     {"capacity", "100"},
                     {"energy_now", "60000000"},
                     {"energy_full", "60000000"},
                     {"energy_full_design", "60000000"},
                     {"power_now", "0"},
                     {"cycle_count", "3"}},
                    changes);
}

/// 3 of 4 Ah, designed for 5, at 1 A and nominally 10 V.
PowerSupply counting(const Texts& changes = {}) {
    return packWith({{"status", "Discharging"},
                     {"capacity", "75"},
                     {"charge_now", "3000000"},
                     {"charge_full", "4000000"},
                     {"charge_full_design", "5000000"},
                     {"current_now", "1000000"},
                     {"voltage_min_design", "10000000"},
                     {"voltage_now", "12500000"}},
                    changes);
}

constexpr auto kAbsent = std::optional<std::int64_t>();

std::optional<std::int64_t> minutesToEmpty(const Packs& packs) {
    return describe(packs, false).timeToEmpty;
}

std::optional<std::int64_t> minutesToFull(const Packs& packs) {
    return describe(packs, true).timeToFullCharge;
}

TEST(PacksLevel, IsWeighedByWhatTheyHoldWhenFull) {
    EXPECT_EQ(chargeLevel({small(), large()}), 88);
    EXPECT_EQ(chargeLevel({small(), counting()}), 67);
}

TEST(PacksLevel, IsThePlainMeanWhereAnEnergyIsUnknown) {
    EXPECT_EQ(chargeLevel({small(), large({{"energy_full", ""}})}), 75);
    EXPECT_EQ(chargeLevel({small(), counting({{"voltage_min_design", ""}, {"voltage_now", ""}})}),
              63);
}

TEST(PacksLevel, IsThatOfThePacksThatTell) {
    const Texts silent = {{"capacity", ""}, {"energy_now", ""}};
    EXPECT_EQ(chargeLevel({small(silent), large({{"capacity", "30"}})}), 30);
    EXPECT_EQ(chargeLevel({small(silent), large(silent)}), kAbsent);
    EXPECT_EQ(chargeLevel({}), kAbsent);
}

TEST(PacksHealth, IsThatOfTheEnergiesTogether) {
    EXPECT_EQ(healthPercentage({small(), large()}), 94);
    EXPECT_EQ(healthPercentage({small(), large({{"energy_full", "63000000"}})}), 98);
    EXPECT_EQ(healthPercentage({large({{"energy_full", "63000000"}})}), 100);
}

TEST(PacksHealth, MakesAnEnergyOfChargeByTheNominalVoltage) {
    // 20 + 4 × 10 of 25 + 5 × 10 Wh.
    EXPECT_EQ(healthPercentage({small(), counting()}), 80);
    const PowerSupply worn = counting({{"charge_full", "2500000"}});
    EXPECT_EQ(healthPercentage({small(), worn}), 60);
    // At 12.5 V it weighs more.
    EXPECT_EQ(healthPercentage(
                  {small(), counting({{"charge_full", "2500000"}, {"voltage_min_design", "0"}})}),
              59);
}

TEST(PacksHealth, LeavesOutWhatIsUnknown) {
    EXPECT_EQ(healthPercentage({small(), large({{"energy_full_design", ""}})}), 80);
    EXPECT_EQ(healthPercentage({small(), large({{"energy_full_design", "1"}})}), 80);
    EXPECT_EQ(healthPercentage({}), kAbsent);
}

TEST(StateOfHealth, ComesBeforeTheAmounts) {
    EXPECT_EQ(healthPercentage({small({{"state_of_health", "91"}})}), 91);
    EXPECT_EQ(healthPercentage({small({{"state_of_health", "104"}})}), 100);
    EXPECT_EQ(healthPercentage({small({{"state_of_health", "60"}}), large()}), 88);
    EXPECT_EQ(healthPercentage({packWith({{"state_of_health", "91"}}, {})}), 91);
}

TEST(StateOfHealth, IsLeftOutWhereItIsNotBelievable) {
    for (const char* health : {"0", "-1", "201", "65535", "", "-NaN"}) {
        EXPECT_EQ(healthPercentage({small({{"state_of_health", health}})}), 80) << health;
    }
}

TEST(PacksCycles, AreTheLargestCount) {
    EXPECT_EQ(cyclesOf({small(), large()}), 100);
    EXPECT_EQ(cyclesOf({large(), small()}), 100);
    EXPECT_EQ(cyclesOf({small({{"cycle_count", "0"}}), large()}), 3);
    EXPECT_EQ(cyclesOf({small({{"cycle_count", ""}}), large({{"cycle_count", "-4"}})}), kAbsent);
}

TEST(PacksCondition, IsTheWorst) {
    const auto word = [](const char* a, const char* b) {
        return conditionWord({small({{"health", a}}), large({{"health", b}})});
    };
    EXPECT_EQ(word("Good", ""), "Good");
    EXPECT_EQ(word("", "Good"), "Good");
    EXPECT_EQ(word("Good", "Warm"), "Warm");
    EXPECT_EQ(word("Overheat", "Good"), "Overheat");
    EXPECT_EQ(word("Overheat", "Cold"), "Overheat");
    EXPECT_EQ(word("Overheat", "Cell imbalance"), "Service Battery");
    EXPECT_EQ(word("Dead", "Cell imbalance"), "Replace Now");
    EXPECT_EQ(word("Unknown", "Unknown"), "");
}

TEST(DeadPack, IsOneThatIsNotEmpty) {
    EXPECT_EQ(conditionWord({small({{"health", "Dead"}})}), "Replace Now");
    EXPECT_EQ(conditionWord({small({{"health", "Dead"}, {"capacity", "1"}})}), "Replace Now");
    EXPECT_EQ(conditionWord({small({{"health", "Dead"}, {"capacity_level", "Low"}})}),
              "Replace Now");
    // A level that is unknown is none of 0.
    EXPECT_EQ(conditionWord({small({{"health", "Dead"}, {"capacity", ""}, {"energy_now", ""}})}),
              "Replace Now");
}

TEST(DeadPack, IsNoneThatIsEmpty) {
    EXPECT_EQ(conditionWord({small({{"health", "Dead"}, {"capacity", "0"}})}), "");
    EXPECT_EQ(conditionWord({small({{"health", "Dead"}, {"capacity", ""}, {"energy_now", "0"}})}),
              "");
    EXPECT_EQ(conditionWord({small({{"health", "Dead"}, {"capacity_level", "Critical"}})}), "");
    // No other fault is mistaken for that.
    EXPECT_EQ(conditionWord({small({{"health", "Blown fuse"}, {"capacity", "0"}})}),
              "Permanent Battery Failure");
}

TEST(PacksStatus, IsThatOfThePackThatWorks) {
    struct Case {
        const char* first;
        const char* second;
        bool isCharging;
        bool isOnPower;
    };
    for (const auto& [first, second, isCharging, isOnPower] : std::vector<Case>{
             {"Discharging", "Not charging", false, false},
             {"Discharging", "Full", false, false},
             {"Discharging", "Unknown", false, false},
             {"Discharging", "Charging", false, false},
             {"Charging", "Not charging", true, true},
             {"Charging", "Full", true, true},
             {"Charging", "Unknown", true, true},
             {"Not charging", "Full", false, true},
             {"Not charging", "Unknown", false, true},
             {"Full", "Unknown", false, true},
             {"Unknown", "", false, false},
         }) {
        const PowerSupply one = small({{"status", first}});
        const PowerSupply other = large({{"status", second}});
        for (const Packs& packs : {Packs{one, other}, Packs{other, one}}) {
            const PowerSourceDescription source = describe(packs, {});
            EXPECT_EQ(source.isCharging, isCharging) << first << ", " << second;
            EXPECT_EQ(source.powerSourceState, isOnPower ? "AC Power" : "Battery Power")
                << first << ", " << second;
        }
    }
}

TEST(PacksTime, IsUntilAllAreEmpty) {
    // 70 Wh at 5 W; what a pack that waits would draw does not count.
    EXPECT_EQ(minutesToEmpty({small(), large()}), 840);
    EXPECT_EQ(minutesToEmpty({small(), large({{"power_now", "7000000"}})}), 840);
    EXPECT_EQ(minutesToEmpty({small(), large({{"power_now", ""}})}), 840);
    EXPECT_EQ(minutesToEmpty({small(), large({{"status", "Discharging"}})}), 840);
    EXPECT_EQ(
        minutesToEmpty({small(), large({{"status", "Discharging"}, {"power_now", "9000000"}})}),
        300);
}

TEST(PacksTime, AddsChargeAsEnergy) {
    // 10 + 3 × 10 Wh at 5 + 1 × 10 W.
    EXPECT_EQ(minutesToEmpty({small(), counting()}), 160);
    EXPECT_EQ(minutesToEmpty({counting(), counting({{"voltage_min_design", "5000000"}})}), 180);
}

TEST(PacksTime, IsUnknownWithoutTheFiguresOfOne) {
    EXPECT_EQ(minutesToEmpty({small(), large({{"energy_now", ""}})}), kAbsent);
    EXPECT_EQ(minutesToEmpty({small({{"power_now", ""}}), large()}), kAbsent);
    EXPECT_EQ(
        minutesToEmpty({small(), counting({{"voltage_min_design", ""}, {"voltage_now", ""}})}),
        kAbsent);
}

TEST(PacksTime, CountsAPackThatChargesAgainstOneThatDischarges) {
    EXPECT_EQ(minutesToEmpty({small(), large({{"status", "Charging"}, {"power_now", "3000000"}})}),
              2100);
    EXPECT_EQ(minutesToEmpty({small(), large({{"status", "Charging"}, {"power_now", "6000000"}})}),
              kAbsent);
    EXPECT_EQ(minutesToEmpty({small(), large({{"status", "Charging"}, {"power_now", ""}})}),
              kAbsent);
}

TEST(PacksTime, IsUntilAllAreFull) {
    const Texts charges = {{"status", "Charging"}};
    EXPECT_EQ(minutesToFull({small(charges), large()}), 120);
    EXPECT_EQ(minutesToFull({small(charges), large({{"energy_now", "55000000"}})}), 180);
    // What one holds above its full capacity is not missing in the other one.
    EXPECT_EQ(minutesToFull({small(charges), large({{"energy_now", "63000000"}})}), 120);
}

TEST(ToldTime, ComesBeforeAmountAndRate) {
    EXPECT_EQ(minutesToEmpty({small({{"time_to_empty_now", "3599"}})}), 59);
    EXPECT_EQ(minutesToEmpty({small({{"time_to_empty_avg", "7200"}})}), 120);
    EXPECT_EQ(
        minutesToEmpty({small({{"time_to_empty_now", "3600"}, {"time_to_empty_avg", "7200"}})}),
        60);
    EXPECT_EQ(minutesToEmpty({small({{"time_to_full_now", "3600"}})}), 120);
    const auto charging = [](const char* file) {
        return minutesToFull({small({{"status", "Charging"}, {file, "5400"}})});
    };
    EXPECT_EQ(charging("time_to_full_now"), 90);
    EXPECT_EQ(charging("time_to_full_avg"), 90);
    EXPECT_EQ(charging("time_to_empty_now"), 120);
}

TEST(ToldTime, IsLeftOutWhereItIsNotBelievable) {
    // The last one is what gauges say that do not know: 65535 minutes.
    for (const char* seconds : {"0", "-1", "", "-NaN", "864060", "3932100"}) {
        EXPECT_EQ(minutesToEmpty({small({{"time_to_empty_now", seconds}})}), 120) << seconds;
        EXPECT_EQ(minutesToEmpty(
                      {small({{"time_to_empty_now", seconds}, {"time_to_empty_avg", "3600"}})}),
                  60)
            << seconds;
    }
}

TEST(ToldTime, OfOneOfSeveralPacksIsNotThatOfAll) {
    EXPECT_EQ(minutesToEmpty({small({{"time_to_empty_now", "60"}}), large()}), 840);
    EXPECT_EQ(minutesToFull({small({{"status", "Charging"}, {"time_to_full_now", "60"}}), large()}),
              120);
}

TEST(ChargeLimit, EndsTheCharge) {
    const auto charging = [](const char* file, const char* limit) {
        return minutesToFull({small({{"status", "Charging"}, {file, limit}})});
    };
    for (const char* file : {"charge_control_end_threshold", "charge_stop_threshold"}) {
        EXPECT_EQ(charging(file, "80"), 72) << file;
        EXPECT_EQ(charging(file, "50"), 0) << file;
        EXPECT_EQ(charging(file, "40"), 0) << file;
        for (const char* none : {"100", "0", "-1", "101", "255", ""}) {
            EXPECT_EQ(charging(file, none), 120) << file << none;
        }
    }
}

TEST(ChargeLimit, IsThatOfEachPack) {
    const PowerSupply limited =
        small({{"status", "Charging"}, {"charge_control_end_threshold", "80"}});
    EXPECT_EQ(minutesToFull({limited, large({{"energy_now", "55000000"}})}), 132);
    EXPECT_EQ(minutesToFull({limited, large({{"charge_control_end_threshold", "80"}})}), 72);
}

TEST(ChargeLimit, MakesTheTimeOfAGaugeUseless) {
    const Texts told = {{"status", "Charging"},
                        {"time_to_full_now", "9000"},
                        {"charge_control_end_threshold", "80"}};
    EXPECT_EQ(minutesToFull({small(told)}), 72);
    EXPECT_EQ(minutesToFull({packWith(told, {})}), kAbsent);
}

TEST(ChargeLimit, ThatIsReachedLeavesTheBatteryAtRest) {
    const PowerSupply limited = small({{"status", "Not charging"},
                                       {"capacity", "80"},
                                       {"energy_now", "16000000"},
                                       {"charge_control_end_threshold", "80"}});
    for (const std::optional<bool> outside : {std::optional(true), std::optional<bool>()}) {
        const PowerSourceDescription source = describe({limited}, outside);
        EXPECT_EQ(source.currentCapacity, 80);
        EXPECT_EQ(source.isCharging, false);
        EXPECT_EQ(source.powerSourceState, "AC Power");
        EXPECT_EQ(source.timeToEmpty, kAbsent);
        EXPECT_EQ(source.timeToFullCharge, kAbsent);
    }
}

TEST(Identity, IsMadeOfMakerModelAndSerialNumber) {
    const auto identity = [](const Texts& changes) {
        return identityOf({packWith({{"manufacturer", "A"}, {"model_name", "B"}}, changes)});
    };
    const std::string usual = identity({{"serial_number", "1"}});
    EXPECT_EQ(identity({{"serial_number", "1"}, {"capacity", "3"}, {"cycle_count", "9"}}), usual);
    EXPECT_NE(identity({{"serial_number", "2"}}), usual);
    EXPECT_NE(identity({{"serial_number", "1"}, {"model_name", "C"}}), usual);
    EXPECT_NE(identity({{"serial_number", "1"}, {"manufacturer", "C"}}), usual);
    EXPECT_NE(identity({{"model_name", ""}, {"serial_number", "B"}}),
              identity({{"serial_number", ""}}));
}

TEST(Identity, IsThatOfAllPacks) {
    EXPECT_EQ(identityOf({}), "");
    EXPECT_NE(identityOf({small()}), "");
    EXPECT_NE(identityOf({small()}), identityOf({small(), small()}));
}

TEST(BatteryPower, IsThatOfAllPacksTogether) {
    const auto power = [](const Packs& packs) { return describe(packs, {}).power; };
    EXPECT_EQ(power({small()}), 5);
    // 1 A at 12.5 V.
    EXPECT_EQ(power({counting()}), 12.5);
    EXPECT_EQ(power({small({{"power_now", "-5000000"}})}), 5);
    EXPECT_EQ(power({small(), counting()}), 17.5);
    EXPECT_EQ(power({small(), large()}), 5);
    // One charges from the other.
    EXPECT_EQ(power({small(), large({{"status", "Charging"}, {"power_now", "2000000"}})}), 3);
    EXPECT_EQ(power({small({{"status", "Charging"}})}), 5);
}

TEST(BatteryPower, IsAbsentWhereAPackDoesNotTellOrRests) {
    const auto power = [](const Packs& packs) { return describe(packs, {}).power; };
    EXPECT_EQ(power({small({{"power_now", "-NaN"}})}), std::nullopt);
    EXPECT_EQ(power({small(), counting({{"voltage_now", ""}})}), std::nullopt);
    EXPECT_EQ(power({small({{"status", "Full"}})}), std::nullopt);
    EXPECT_EQ(power({small({{"power_now", "0"}})}), std::nullopt);
    EXPECT_EQ(power({small({{"status", "Unknown"}})}), std::nullopt);
}

}  // namespace
}  // namespace tarnwick::platform
