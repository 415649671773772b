// SPDX-License-Identifier: MIT
#include "tools/text_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace tarnwick::probe {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

MachineSample warmLaptop() {
    MachineSample sample;
    sample.cpu = {.usagePercentage = 92.75,
                  .userPercentage = 60,
                  .systemPercentage = 32.75,
                  .idlePercentage = 7.25,
                  .coreCount = 2,
                  .coreUsages = {100, 85.5}};
    sample.gpu->usagePercentage = 37;
    sample.gpu->isAvailable = true;
    sample.gpus = {{.id = "card0", .model = "Card", .driver = "i915", .usagePercentage = 37},
                   {.id = "card1", .driver = "amdgpu", .isAsleep = true}};
    sample.memory.total = std::uint64_t{16} << 30U;
    sample.memory.used = std::uint64_t{13} << 30U;
    sample.storage->resize(1);
    sample.storage->front().name = "Home";
    sample.storage->front().totalSpace = 1'000'000'000'000;
    sample.storage->front().usedSpace = 400'000'000'000;
    sample.battery->percentage = 81;
    sample.battery->isCharging = true;
    sample.battery->health = 93;
    sample.battery->cycleCount = 212;
    sample.battery->timeRemaining = 95;
    sample.battery->hasBattery = true;
    sample.network = {.downloadBytesPerSecond = 1500,
                      .uploadBytesPerSecond = 20,
                      .totalReceivedBytes = 0,
                      .totalSentBytes = 0,
                      .hasSample = true};
    sample.system.uptime = 190643.25;
    sample.topCPUProcesses = {{.id = 7, .name = "cc1plus", .cpuUsage = 50, .memoryUsage = 0}};
    sample.topMemoryProcesses = {
        {.id = 8, .name = "editor", .cpuUsage = 0, .memoryUsage = std::uint64_t{8} << 20U}};
    sample.thermalState = 2;
    return sample;
}

TEST(TextPage, HasALineForEachFigure) {
    EXPECT_EQ(textPage(warmLaptop(), false),
              "CPU usage is at 93%, above the high threshold.\n"
              "\n"
              "CPU           93% !! 60% user, 33% system, 2 processors\n"
              "GPU           37%    Card\n"
              "GPU        asleep    card1, amdgpu\n"
              "Memory        81% !  13 GB of 16 GB\n"
              "Disk          40%    400 GB of 1 TB on Home\n"
              "Battery       81%    charging, 1h 35m until full, 93% of its design, 212 cycles\n"
              "Heat      Serious\n"
              "Network              2 KB/s down, 20 bytes/s up\n"
              "Uptime               2d 4h 57m\n"
              "\n"
              "CPU         50.0%    cc1plus\n"
              "Memory       8 MB    editor\n");
}

TEST(TextPage, HasTheColoursOfATerminalWhereTheyAreSeen) {
    const std::string page = textPage(warmLaptop(), true);
    EXPECT_THAT(page, HasSubstr("\033[31mCPU usage is at 93%, above the high threshold.\033[0m\n"));
    EXPECT_THAT(page, HasSubstr("CPU           \033[31m93%\033[0m !! 60% user"));
    EXPECT_THAT(page, HasSubstr("GPU           \033[32m37%\033[0m    Card\n"));
    EXPECT_THAT(page, HasSubstr("GPU        asleep    card1, amdgpu\n"));
    EXPECT_THAT(page, HasSubstr("Memory        \033[33m81%\033[0m !  13 GB"));
}

TEST(TextPage, LeavesOutWhatIsUnknown) {
    MachineSample sample;
    EXPECT_EQ(textPage(sample, true), "\033[32mNo metrics are above thresholds.\033[0m\n\n");
    sample.gpu.reset();
    sample.storage.reset();
    sample.battery.reset();
    EXPECT_EQ(textPage(sample, false), "No metrics are above thresholds.\n\n");
    sample.cpu.coreCount = 1;
    sample.cpu.usagePercentage = std::numeric_limits<double>::quiet_NaN();
    sample.battery = BatteryInfo{};
    sample.battery->hasBattery = true;
    sample.battery->hasPercentage = false;
    EXPECT_EQ(textPage(sample, false),
              "No metrics are above thresholds.\n\n"
              "CPU                  1 processor\n"
              "Battery\n");
}

TEST(TextPage, IsNotWiderThanATerminal) {
    MachineSample sample;
    std::string name = "\033[2J\n\u009B2J\xff";
    for (int i = 0; i < 100; ++i) {
        name += "\u00E9";
    }
    sample.topMemoryProcesses = {{.id = 1, .name = name, .cpuUsage = 0, .memoryUsage = 0}};
    std::string expected = "Memory    Zero KB     [2J  2J\uFFFD";
    for (int i = 0; i < 59 - 9; ++i) {
        expected += "\u00E9";
    }
    const std::string page = textPage(sample, false);
    EXPECT_THAT(page, HasSubstr("\n" + expected + "\n"));
}

}  // namespace
}  // namespace tarnwick::probe
