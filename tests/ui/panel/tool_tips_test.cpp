// SPDX-License-Identifier: MIT
#include "ui/panel/tool_tips.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "tests/ui/panel/home_fixtures.h"

namespace tarnwick {
namespace {

const testing::PlainByteCountFormatter formatter;

constexpr std::uint64_t kTipGiB = 1ULL << 30;

TEST(CPUToolTip, TellsSharesAndTheLoadOfEachCore) {
    CPUInfo cpu;
    EXPECT_EQ(cpuToolTip(cpu), "");
    cpu.userPercentage = 30.06;
    cpu.systemPercentage = 12;
    cpu.coreUsages = {100, 0.4, 50.6};
    EXPECT_EQ(cpuToolTip(cpu), "User 30.1%, system 12.0%, cores 100% 0% 51%");
    cpu.coreUsages = {std::numeric_limits<double>::quiet_NaN()};
    EXPECT_EQ(cpuToolTip(cpu), "User 30.1%, system 12.0%, core 0%");
}

TEST(CPUToolTip, IsShortOnMachinesWithManyCores) {
    CPUInfo cpu;
    cpu.coreUsages.assign(16, 25);
    EXPECT_EQ(cpuToolTip(cpu).find("from"), std::string::npos);
    cpu.coreUsages.assign(64, 25);
    cpu.coreUsages[3] = 2;
    cpu.coreUsages[60] = 99;
    EXPECT_EQ(cpuToolTip(cpu), "User 0.0%, system 0.0%, 64 cores from 2% to 99%");
}

TEST(MemoryToolTip, TellsFreeCachedAndSwap) {
    EXPECT_EQ(memoryToolTip({}, formatter), "");
    MemoryInfo memory{.total = 16 * kTipGiB, .used = 8 * kTipGiB, .free = 3 * kTipGiB};
    memory.cached = 5 * kTipGiB;
    EXPECT_EQ(memoryToolTip(memory, formatter), "Free 3 GB, cached 5 GB, no swap");
    memory.swapTotal = 4 * kTipGiB;
    memory.swapUsed = kTipGiB;
    EXPECT_EQ(memoryToolTip(memory, formatter), "Free 3 GB, cached 5 GB, swap 1 GB of 4 GB");
}

TEST(StorageToolTip, TellsWhatIsFree) {
    StorageInfo volume;
    EXPECT_EQ(storageToolTip(volume, formatter), "");
    volume.totalSpace = 500'000'000'000;
    volume.availableSpace = 120'000'000'000;
    EXPECT_EQ(storageToolTip(volume, formatter), "120 GB free");
    volume.name = "Data";
    volume.mountPoint = "/home";
    EXPECT_EQ(storageToolTip(volume, formatter), "120 GB free, mounted at /home");
    volume.name = "/home";
    EXPECT_EQ(storageToolTip(volume, formatter), "120 GB free");
}

TEST(BatteryToolTip, TellsChargeAndTime) {
    BatteryInfo battery;
    EXPECT_EQ(batteryToolTip(battery), "");
    battery.hasBattery = true;
    battery.percentage = 80;
    EXPECT_EQ(batteryToolTip(battery), "Charge 80%");
    battery.timeRemaining = 95;
    EXPECT_EQ(batteryToolTip(battery), "Charge 80%, 1h 35m left");
    battery.isPluggedIn = true;
    EXPECT_EQ(batteryToolTip(battery), "Charge 80%, plugged in");
    battery.isCharging = true;
    EXPECT_EQ(batteryToolTip(battery), "Charge 80%, charging, 1h 35m to full");
    battery.power = 28.44;
    EXPECT_EQ(batteryToolTip(battery), "Charge 80%, charging, 1h 35m to full, 28.4 W");
    battery.power = std::nullopt;
    battery.timeRemaining = 0;
    EXPECT_EQ(batteryToolTip(battery), "Charge 80%, charging");
}

TEST(TotalToolTip, TellsTheSumSinceTheStart) {
    EXPECT_EQ(totalToolTip("Sent", 1'500'000'000, formatter), "Sent since the start: 1.5 GB");
    EXPECT_FALSE(totalToolTip("Sent", UINT64_MAX, formatter).empty());
    EXPECT_EQ(saturatedSum(1, 2), 3U);
    EXPECT_EQ(saturatedSum(UINT64_MAX, 2), UINT64_MAX);
}

TEST(ProcessToolTip, TellsItsNumberAndItsCommand) {
    EXPECT_EQ(processToolTip({.id = 4711, .name = "a"}), "Process 4711");
    EXPECT_EQ(processToolTip({.id = 4711, .name = "a", .command = "/usr/bin/a -b c"}),
              "Process 4711: /usr/bin/a -b c");
}

TEST(TrendToolTip, TellsItsRange) {
    EXPECT_EQ(trendToolTip({}, {}), "");
    EXPECT_EQ(trendToolTip({}, {}, 0.5), "");
    EXPECT_EQ(trendToolTip({3, 97, 40}, {}), "Lowest 3%, highest 97%");
}

TEST(TrendToolTip, TellsTheNearestValueAndItsAge) {
    const std::vector<double> values{10, 20, 30};
    const std::vector<double> times{1000, 1010, 1090};
    const auto at = [&](double share) { return trendToolTip(values, times, share); };
    EXPECT_EQ(at(0), "10% 1m ago, lowest 10%, highest 30%");
    EXPECT_EQ(at(0.24), at(0));
    EXPECT_EQ(at(0.26), "20% 1m ago, lowest 10%, highest 30%");
    EXPECT_EQ(at(1), "30% now, lowest 10%, highest 30%");
    // Beyond the ends it is the end.
    EXPECT_EQ(at(-1), at(0));
    EXPECT_EQ(at(2), at(1));
    EXPECT_EQ(trendToolTip({5}, {1}, 0.5), "5% now, lowest 5%, highest 5%");
    // A clock that was set back has no ages.
    EXPECT_EQ(trendToolTip({5, 6}, {9, 1}, 0.0), "5% now, lowest 5%, highest 6%");
}

}  // namespace
}  // namespace tarnwick
