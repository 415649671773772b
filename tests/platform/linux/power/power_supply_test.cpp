// SPDX-License-Identifier: MIT
#include "platform/linux/power/power_supply.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace tarnwick::platform {
namespace {

/// The texts of a supply's files, without their line breaks.
using Files = std::vector<std::pair<std::string, std::string>>;

PowerSupply supply(const Files& files) {
    PowerSupply made;
    for (const auto& [name, text] : files) {
        made.take(name, text + "\n");
    }
    return made;
}

/// A battery that counts energy, with some files other than usual.
PowerSupply battery(const Files& changes = {}) {
    PowerSupply made = supply({{"type", "Battery"},
                               {"present", "1"},
                               {"status", "Discharging"},
                               {"capacity", "60"},
                               {"energy_now", "30000000"},
                               {"energy_full", "50000000"},
                               {"energy_full_design", "60000000"},
                               {"power_now", "10000000"},
                               {"voltage_now", "12000000"},
                               {"cycle_count", "300"}});
    for (const auto& [name, text] : changes) {
        made.take(name, text + "\n");
    }
    return made;
}

/// One that counts charge.
PowerSupply chargeBattery(const Files& changes = {}) {
    PowerSupply made = supply({{"type", "Battery"},
                               {"status", "Discharging"},
                               {"capacity", "60"},
                               {"charge_now", "3000000"},
                               {"charge_full", "5000000"},
                               {"charge_full_design", "6000000"},
                               {"current_now", "1000000"},
                               {"voltage_now", "12000000"}});
    for (const auto& [name, text] : changes) {
        made.take(name, text + "\n");
    }
    return made;
}

constexpr auto kNone = std::optional<std::int64_t>();
constexpr std::optional<bool> kUnknown;

std::optional<std::int64_t> toEmpty(const PowerSupply& made,
                                    std::optional<bool> outside = kUnknown) {
    return describe({made}, outside).timeToEmpty;
}

std::optional<std::int64_t> toFull(const PowerSupply& made) {
    return describe({made}, kUnknown).timeToFullCharge;
}

TEST(PowerSupplyFigure, IsAWholeNumberWithALineBreak) {
    EXPECT_EQ(parseFigure("0\n"), 0);
    EXPECT_EQ(parseFigure("49590000\n"), 49590000);
    EXPECT_EQ(parseFigure("-1200\n"), -1200);
    EXPECT_EQ(parseFigure("9223372036854775807\n"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(parseFigure("-9223372036854775808\n"), std::numeric_limits<std::int64_t>::min());
}

TEST(PowerSupplyFigure, IsAbsentForEverythingElse) {
    for (const char* text :
         {"", "\n", "-", "-\n", "-NaN\n", "nan\n", "+5\n", " 5\n", "5 \n", "5%\n", "5.0\n", "0x5\n",
          "unknown\n", "9223372036854775808\n", "-9223372036854775809\n"}) {
        EXPECT_EQ(parseFigure(text), std::nullopt) << text;
    }
}

TEST(PowerSupplyFigure, IsAbsentWhenTheFileWasCutShort) {
    const std::string text = "49590000";
    for (std::size_t size = 0; size <= text.size(); ++size) {
        EXPECT_EQ(parseFigure(text.substr(0, size)), std::nullopt) << size;
    }
}

TEST(PowerSupplyWord, IsTheFirstLineInAscii) {
    EXPECT_EQ(parseWord("Not charging\n"), "Not charging");
    EXPECT_EQ(parseWord(" Full \nmore\n"), "Full");
    EXPECT_EQ(parseWord("Full"), "Full");
    EXPECT_EQ(parseWord(""), "");
    EXPECT_EQ(parseWord("\n"), "");
    EXPECT_EQ(parseWord("\xff\xfe\n"), "");
    EXPECT_EQ(parseWord("a\x01z\n"), "");
}

TEST(PowerSupply, HasTheFiguresAndWordsThatItTook) {
    PowerSupply made;
    EXPECT_EQ(made.figure("capacity"), std::nullopt);
    EXPECT_EQ(made.word("status"), "");
    made.take("capacity", "5\n");
    made.take("status", "Full\n");
    EXPECT_EQ(made.figure("capacity"), 5);
    EXPECT_EQ(made.figure("status"), std::nullopt);
    EXPECT_EQ(made.word("status"), "Full");
    made.take("capacity", "rubbish\n");
    EXPECT_EQ(made.figure("capacity"), std::nullopt);
}

TEST(PowerSupply, OfAPeripheralIsNoSystemBattery) {
    EXPECT_TRUE(battery().isSystemBattery());
    EXPECT_TRUE(battery({{"scope", "System"}}).isSystemBattery());
    EXPECT_TRUE(battery({{"scope", "Unknown"}}).isSystemBattery());
    EXPECT_FALSE(battery({{"scope", "Device"}}).isSystemBattery());
    for (const char* type : {"Mains", "UPS", "USB", "battery", "Batteries", ""}) {
        EXPECT_FALSE(battery({{"type", type}}).isSystemBattery()) << type;
    }
}

TEST(PowerSupply, FromOutsideSaysWhetherItSupplies) {
    for (const char* type : {"Mains", "USB", "USB_C", "USB_PD", "Wireless"}) {
        EXPECT_EQ(supply({{"type", type}, {"online", "0"}}).suppliesFromOutside(), false) << type;
        EXPECT_EQ(supply({{"type", type}, {"online", "1"}}).suppliesFromOutside(), true) << type;
        EXPECT_EQ(supply({{"type", type}, {"online", "2"}}).suppliesFromOutside(), true) << type;
    }
}

TEST(PowerSupply, ThatSuppliesNothingFromOutsideSaysNothing) {
    EXPECT_EQ(supply({{"type", "Mains"}}).suppliesFromOutside(), kUnknown);
    EXPECT_EQ(supply({{"type", "Mains"}, {"online", "-NaN"}}).suppliesFromOutside(), kUnknown);
    EXPECT_EQ(supply({{"type", "Mains"}, {"online", "-1"}}).suppliesFromOutside(), kUnknown);
    EXPECT_EQ(supply({{"type", "Battery"}, {"online", "1"}}).suppliesFromOutside(), kUnknown);
    EXPECT_EQ(supply({{"type", "UPS"}, {"online", "1"}}).suppliesFromOutside(), kUnknown);
    EXPECT_EQ(supply({{"online", "1"}}).suppliesFromOutside(), kUnknown);
    EXPECT_EQ(supply({{"type", "USB"}, {"scope", "Device"}, {"online", "1"}}).suppliesFromOutside(),
              kUnknown);
}

TEST(ChargeLevel, IsWhatTheDriverSays) {
    for (const char* capacity : {"0", "1", "60", "100"}) {
        EXPECT_EQ(chargeLevel({battery({{"capacity", capacity}})}), std::stoll(capacity));
    }
}

TEST(ChargeLevel, IsReckonedWhereTheDriverSaysNothingBelievable) {
    for (const char* capacity : {"-NaN", "", "-1", "101", "255", "65535"}) {
        EXPECT_EQ(chargeLevel({battery({{"capacity", capacity}, {"energy_now", "20200000"}})}), 40)
            << capacity;
        EXPECT_EQ(chargeLevel({chargeBattery({{"capacity", capacity}})}), 60) << capacity;
    }
}

TEST(ChargeLevel, OfABatteryChargedAboveItsFullCapacityIs100) {
    EXPECT_EQ(chargeLevel({battery({{"capacity", ""}, {"energy_now", "52000000"}})}), 100);
}

TEST(ChargeLevel, OfAnEmptyBatteryIs0) {
    EXPECT_EQ(chargeLevel({battery({{"capacity", ""}, {"energy_now", "0"}})}), 0);
}

TEST(ChargeLevel, IsAbsentWhereNothingIsKnown) {
    EXPECT_EQ(chargeLevel({battery({{"capacity", ""}, {"energy_full", "0"}})}), kNone);
    EXPECT_EQ(chargeLevel({battery({{"capacity", ""}, {"energy_full", ""}})}), kNone);
    EXPECT_EQ(chargeLevel({battery({{"capacity", ""}, {"energy_now", "-5"}})}), kNone);
    EXPECT_EQ(chargeLevel({supply({{"type", "Battery"}})}), kNone);
}

TEST(TimeToEmpty, IsTheEnergyOverThePower) {
    EXPECT_EQ(toEmpty(battery()), 180);
    EXPECT_EQ(toEmpty(battery({{"power_now", "7000000"}})), 257);
    EXPECT_EQ(toEmpty(battery({{"energy_now", "0"}})), 0);
}

TEST(TimeToEmpty, IsTheChargeOverTheCurrent) {
    EXPECT_EQ(toEmpty(chargeBattery()), 180);
}

TEST(TimeToEmpty, TakesARateWithAMinusSign) {
    EXPECT_EQ(toEmpty(battery({{"power_now", "-10000000"}})), 180);
    EXPECT_EQ(toEmpty(chargeBattery({{"current_now", "-1000000"}})), 180);
}

TEST(TimeToEmpty, ComesFromCurrentAndVoltageWithoutAPower) {
    for (const char* power : {"", "-NaN", "0"}) {
        EXPECT_EQ(toEmpty(battery({{"power_now", power}, {"current_now", "1250000"}})), 120);
        EXPECT_EQ(toEmpty(battery({{"power_now", power}, {"current_now", "-1250000"}})), 120);
    }
}

TEST(TimeToEmpty, ComesFromPowerAndVoltageWithoutACurrent) {
    EXPECT_EQ(toEmpty(chargeBattery({{"current_now", ""}, {"power_now", "24000000"}})), 90);
}

TEST(TimeToEmpty, PrefersTheRateInTheUnitOfTheAmount) {
    EXPECT_EQ(toEmpty(battery({{"current_now", "5000000"}})), 180);
    EXPECT_EQ(toEmpty(chargeBattery({{"power_now", "60000000"}})), 180);
}

TEST(TimeToEmpty, IsUnknownWithoutARate) {
    EXPECT_EQ(toEmpty(battery({{"power_now", ""}})), kNone);
    EXPECT_EQ(toEmpty(battery({{"power_now", ""}, {"current_now", "0"}})), kNone);
    EXPECT_EQ(
        toEmpty(battery({{"power_now", ""}, {"current_now", "1000000"}, {"voltage_now", ""}})),
        kNone);
    EXPECT_EQ(toEmpty(chargeBattery({{"current_now", "0"}})), kNone);
}

TEST(TimeToEmpty, IsUnknownWithoutAnAmount) {
    EXPECT_EQ(toEmpty(battery({{"energy_now", ""}})), kNone);
    EXPECT_EQ(toEmpty(battery({{"energy_now", "-1"}})), kNone);
}

TEST(TimeToEmpty, IsUnknownWhereItWouldBeMoreThanTenDays) {
    EXPECT_EQ(toEmpty(battery({{"power_now", "125000"}})), 14400);
    EXPECT_EQ(toEmpty(battery({{"power_now", "124000"}})), kNone);
    EXPECT_EQ(toEmpty(battery({{"energy_now", "9223372036854775807"}, {"power_now", "1"}})), kNone);
}

TEST(TimeToEmpty, IsKnownWhileDischargingOnly) {
    EXPECT_EQ(toEmpty(battery(), true), 180);
    EXPECT_EQ(toEmpty(battery({{"status", "Charging"}}), false), kNone);
    EXPECT_EQ(toEmpty(battery({{"status", "Full"}}), true), kNone);
    EXPECT_EQ(toEmpty(battery({{"status", "Not charging"}}), false), kNone);
}

TEST(TimeToEmpty, OfABatteryWithoutAKnownStatusDependsOnPowerFromOutside) {
    for (const char* status : {"Unknown", "", "-NaN"}) {
        EXPECT_EQ(toEmpty(battery({{"status", status}}), false), 180) << status;
        EXPECT_EQ(toEmpty(battery({{"status", status}})), 180) << status;
        EXPECT_EQ(toEmpty(battery({{"status", status}}), true), kNone) << status;
    }
}

TEST(TimeToFull, IsWhatIsMissingOverTheRate) {
    EXPECT_EQ(toFull(battery({{"status", "Charging"}})), 120);
    EXPECT_EQ(toFull(chargeBattery({{"status", "Charging"}})), 120);
    EXPECT_EQ(toFull(battery({{"status", "Charging"}, {"energy_now", "50000000"}})), 0);
}

TEST(TimeToFull, OfABatteryChargedAboveItsFullCapacityIs0) {
    EXPECT_EQ(toFull(battery({{"status", "Charging"}, {"energy_now", "52000000"}})), 0);
}

TEST(TimeToFull, IsKnownWhileChargingOnly) {
    for (const char* status : {"Discharging", "Full", "Not charging", "Unknown", ""}) {
        EXPECT_EQ(toFull(battery({{"status", status}})), kNone) << status;
    }
    EXPECT_EQ(toFull(battery({{"status", "Charging"}, {"energy_full", ""}})), kNone);
    EXPECT_EQ(toFull(battery({{"status", "Charging"}, {"power_now", "0"}})), kNone);
}

TEST(HealthPercentage, IsTheFullCapacityOverTheDesign) {
    EXPECT_EQ(healthPercentage({battery()}), 83);
    EXPECT_EQ(healthPercentage({chargeBattery()}), 83);
    EXPECT_EQ(healthPercentage(
                  {battery({{"energy_full", "49590000"}, {"energy_full_design", "57000000"}})}),
              87);
    EXPECT_EQ(healthPercentage({battery({{"energy_full", "300000"}})}), 1);
}

TEST(HealthPercentage, OfABatteryThatHoldsMoreThanItsDesignIs100) {
    EXPECT_EQ(healthPercentage({battery({{"energy_full", "60000000"}})}), 100);
    EXPECT_EQ(healthPercentage({battery({{"energy_full", "60000001"}})}), 100);
    EXPECT_EQ(healthPercentage({battery({{"energy_full", "120000000"}})}), 100);
}

TEST(HealthPercentage, IsAbsentForWhatNoBatteryHolds) {
    EXPECT_EQ(healthPercentage({battery({{"energy_full", "120000001"}})}), kNone);
    EXPECT_EQ(healthPercentage({battery({{"energy_full", "9223372036854775807"}})}), kNone);
}

TEST(HealthPercentage, IsAbsentWithoutBothFigures) {
    for (const char* figure : {"", "-NaN", "0", "-50000000"}) {
        EXPECT_EQ(healthPercentage({battery({{"energy_full", figure}})}), kNone) << figure;
        EXPECT_EQ(healthPercentage({battery({{"energy_full_design", figure}})}), kNone) << figure;
    }
    EXPECT_EQ(healthPercentage({battery({{"energy_full", "100000"}})}), kNone);
}

TEST(HealthPercentage, DoesNotMixEnergyAndCharge) {
    EXPECT_EQ(healthPercentage(
                  {battery({{"energy_full_design", ""}, {"charge_full_design", "50000000"}})}),
              kNone);
    EXPECT_EQ(healthPercentage({battery({{"energy_full_design", ""},
                                         {"charge_full", "4500000"},
                                         {"charge_full_design", "5000000"}})}),
              90);
}

TEST(ConditionWord, IsTheKernelsWord) {
    for (const char* word : {"Good", "Overheat", "Cold", "Calibration required", "odd"}) {
        EXPECT_EQ(conditionWord({battery({{"health", word}})}), word);
    }
    EXPECT_EQ(conditionWord({battery()}), "");
    EXPECT_EQ(conditionWord({battery({{"health", "Unknown"}})}), "");
}

TEST(ConditionWord, NamesAFaultAsTheEvaluationKnowsIt) {
    EXPECT_EQ(conditionWord({battery({{"health", "Dead"}})}), "Replace Now");
    EXPECT_EQ(conditionWord({battery({{"health", "Unspecified failure"}})}), "Check Battery");
    EXPECT_EQ(conditionWord({battery({{"health", "Blown fuse"}})}), "Permanent Battery Failure");
    EXPECT_EQ(conditionWord({battery({{"health", "Cell imbalance"}})}), "Service Battery");
}

TEST(PowerSource, HasTheLevelAndTheWord) {
    const auto source = describe({battery({{"health", "Good"}})}, false);
    EXPECT_EQ(source.type, "InternalBattery");
    EXPECT_EQ(source.currentCapacity, 60);
    EXPECT_EQ(source.batteryHealthCondition, "Good");
}

TEST(PowerSource, ChargesWhenTheStatusSaysSo) {
    EXPECT_EQ(describe({battery({{"status", "Charging"}})}, true).isCharging, true);
    for (const char* status : {"Discharging", "Not charging", "Full", "Unknown", "charging", ""}) {
        EXPECT_EQ(describe({battery({{"status", status}})}, true).isCharging, false) << status;
    }
}

TEST(PowerSource, IsOnExternalPowerWhenASupplyFromOutsideSaysSo) {
    for (const char* status : {"Discharging", "Not charging", "Full", "Unknown", ""}) {
        EXPECT_EQ(describe({battery({{"status", status}})}, true).powerSourceState, "AC Power");
        EXPECT_EQ(describe({battery({{"status", status}})}, false).powerSourceState,
                  "Battery Power");
    }
}

TEST(PowerSource, ThatIsChargedIsOnExternalPower) {
    EXPECT_EQ(describe({battery({{"status", "Charging"}})}, false).powerSourceState, "AC Power");
    EXPECT_EQ(describe({battery({{"status", "Charging"}})}, kUnknown).powerSourceState, "AC Power");
}

TEST(PowerSource, IsJudgedByItsStatusWhereNoSupplySays) {
    const auto state = [](const char* status) {
        return describe({battery({{"status", status}})}, kUnknown).powerSourceState;
    };
    EXPECT_EQ(state("Full"), "AC Power");
    EXPECT_EQ(state("Not charging"), "AC Power");
    EXPECT_EQ(state("Discharging"), "Battery Power");
    EXPECT_EQ(state("Unknown"), "Battery Power");
}

TEST(PowerSource, StaysWhereTheLevelIsUnknown) {
    const PowerSourceDescription source =
        describe({battery({{"capacity", ""}, {"energy_now", ""}})}, true);
    EXPECT_EQ(source.type, "InternalBattery");
    EXPECT_EQ(source.currentCapacity, kNone);
    EXPECT_EQ(source.timeToEmpty, kNone);
}

TEST(Cycles, AreThoseThatTheDriverCounts) {
    EXPECT_EQ(cyclesOf({battery()}), 300);
    EXPECT_EQ(cyclesOf({battery({{"cycle_count", "1"}})}), 1);
}

TEST(Cycles, AreUnknownWhereTheDriverDoesNotKnow) {
    for (const char* count : {"0", "-1", "", "-NaN"}) {
        EXPECT_EQ(cyclesOf({battery({{"cycle_count", count}})}), kNone) << count;
    }
}

}  // namespace
}  // namespace tarnwick::platform
