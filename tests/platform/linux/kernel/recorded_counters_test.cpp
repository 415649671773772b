// SPDX-License-Identifier: MIT
// What the processor and memory samplers say of the recorded processors and memories.
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/linux/kernel/linux_kernel.h"
#include "services/cpu_service.h"
#include "services/memory_service.h"
#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using ::testing::DoubleEq;
using ::testing::ElementsAreArray;
using testing::MachineTree;
using testing::recordedFile;
using testing::recordedMachine;
using testing::recordedMachines;

/// KiB.
struct Memory {
    std::string name;
    std::uint64_t used;
    std::uint64_t free;
    std::uint64_t cached;
    std::uint64_t app;
    std::uint64_t wired;
    std::uint64_t compressed;
};

const std::vector<Memory>& memories() {
    static const std::vector<Memory> all = {
        {"full-tmpfs", 3'500'000, 300'000, 200'000, 3'000'000, 500'000, 0},
        {"huge-pages", 18'500'000, 10'000'000, 3'500'000, 6'100'000, 12'400'000, 0},
        {"large-reserve", 600'000, 3'400'000, 0, 104'000, 496'000, 0},
        {"locked-pages", 13'000'000, 1'000'000, 2'000'000, 5'400'000, 7'600'000, 0},
        {"no-available", 1'900'000, 300'000, 1'800'000, 1'400'000, 500'000, 0},
        {"swap-cache", 7'100'000, 200'000, 700'000, 3'100'000, 4'000'000, 0},
        {"zfs", 14'133'664, 6'000'000, 12'634'336, 8'200'000, 5'933'664, 0},
        {"zfs-of-the-host", 1'594'304, 1'000'000, 1'600'000, 1'300'000, 294'304, 0},
        {"zram-in-use", 6'400'000, 400'000, 1'200'000, 3'900'000, 1'700'000, 800'000},
        {"zram-of-the-host", 797'152, 500'000, 800'000, 797'152, 0, 0},
        {"zram-unused", 3'500'000, 2'000'000, 2'500'000, 2'700'000, 800'000, 0},
    };
    return all;
}

TEST(RecordedMemories, AreAllInTheTable) {
    std::vector<std::string> names;
    for (const Memory& memory : memories()) {
        names.push_back(memory.name);
    }
    EXPECT_EQ(names, recordedMachines("memories"));
}

TEST(RecordedMemories, AreDividedUpTruly) {
    for (const Memory& expected : memories()) {
        LinuxKernel kernel(recordedMachine("memories/" + expected.name));
        const MemoryInfo info = MemoryService(kernel).readMemoryInfo();
        // The figures are pages of 4 KiB; larger pages are not always full.
        const auto expectSame = [&](std::uint64_t bytes, std::uint64_t kibibytes,
                                    const char* what) {
            const std::uint64_t slack = kernel.pageSize() <= 4096 ? 0 : 4 * kernel.pageSize();
            EXPECT_LE(bytes, kibibytes * 1024 + slack) << expected.name << ' ' << what;
            EXPECT_GE(bytes + slack, kibibytes * 1024) << expected.name << ' ' << what;
        };
        expectSame(info.used, expected.used, "used");
        expectSame(info.free, expected.free, "free");
        expectSame(info.cached, expected.cached, "cached");
        expectSame(info.app, expected.app, "app");
        expectSame(info.wired, expected.wired, "wired");
        expectSame(info.compressed, expected.compressed, "compressed");
        EXPECT_LE(info.used + info.free + info.cached, info.total) << expected.name;
    }
}

/// Shares of the second between the two readings, percent.
struct Processors {
    std::string name;
    double usage;
    double user;
    double system;
    double idle;
    std::vector<double> each;
};

const std::vector<Processors>& processors() {
    static const std::vector<Processors> all = {
        {"backward-iowait", 37.5, 37.5, 0, 62.5, {50, 25}},
        {"guests", 70, 40, 10, 30, {70}},
        {"long-up", 50, 50, 0, 50, {50, 50}},
        {"stolen-and-nice", 30, 5, 15, 70, {60, 0}},
    };
    return all;
}

TEST(RecordedProcessors, AreAllInTheTable) {
    std::vector<std::string> names;
    for (const Processors& each : processors()) {
        names.push_back(each.name);
    }
    EXPECT_EQ(names, recordedMachines("processors"));
}

TEST(RecordedProcessors, WereAsBusyAsTheyWere) {
    for (const Processors& expected : processors()) {
        const std::string folder = "processors/" + expected.name;
        const MachineTree tree(folder + "/before");
        LinuxKernel kernel(tree.root());
        CPUService service(kernel);
        EXPECT_EQ(service.readCPUInfo().usagePercentage, 0);
        tree.write("proc/stat", recordedFile(folder + "/after", "proc/stat"));
        const CPUInfo info = service.readCPUInfo();
        EXPECT_DOUBLE_EQ(info.usagePercentage, expected.usage) << expected.name;
        EXPECT_DOUBLE_EQ(info.userPercentage, expected.user) << expected.name;
        EXPECT_DOUBLE_EQ(info.systemPercentage, expected.system) << expected.name;
        EXPECT_DOUBLE_EQ(info.idlePercentage, expected.idle) << expected.name;
        std::vector<::testing::Matcher<double>> each;
        for (const double usage : expected.each) {
            each.push_back(DoubleEq(usage));
        }
        EXPECT_THAT(info.coreUsages, ElementsAreArray(each)) << expected.name;
    }
}

}  // namespace
}  // namespace tarnwick::platform
