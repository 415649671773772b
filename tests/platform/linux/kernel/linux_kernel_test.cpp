// SPDX-License-Identifier: MIT
#include "platform/linux/kernel/linux_kernel.h"

#include <atomic>
#include <cerrno>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <thread>
#include <unistd.h>
#include <vector>

#include "services/cpu_service.h"
#include "services/memory_service.h"
#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using testing::MachineTree;
using testing::recordedFile;
using testing::recordedMachine;
using ::testing::SizeIs;

constexpr std::uint64_t kB = 1024;

// The recorded machines have pages of 4 KiB; their figures divide by larger ones only roughly.
std::uint64_t pagesOfKB(std::uint64_t kibibytes) {
    return kibibytes * kB / static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

std::string memInfoWithTotal(std::uint64_t kibibytes) {
    return "MemTotal: " + std::to_string(kibibytes) +
           " kB\nMemFree: 4 kB\nSwapTotal: 100 kB\nSwapFree: 40 kB\n";
}

TEST(LinuxKernel, ReadsALaptop) {
    LinuxKernel kernel(recordedMachine("laptop"));
    EXPECT_EQ(kernel.logicalCPUCount(), 8);
    EXPECT_EQ(kernel.memorySize(), 16122588 * kB);
    EXPECT_EQ(kernel.bootTime()->seconds, 1767612345);
    const SwapUsage swap = kernel.swapUsage().value();
    EXPECT_EQ(swap.total, 8061288 * kB);
    EXPECT_EQ(swap.used, (8061288 - 6904008) * kB);
    EXPECT_EQ(swap.available, 6904008 * kB);

    const HostStatistics host = kernel.hostStatistics64();
    ASSERT_EQ(host.result, 0);
    const std::uint64_t internal = 5340112 + 948420;
    const std::uint64_t compressor = 65536 + 318767104 / kB;
    EXPECT_EQ(host.statistics.free_count, pagesOfKB(1284532));
    EXPECT_EQ(host.statistics.external_page_count, pagesOfKB(7310244 - 1284532));
    EXPECT_EQ(host.statistics.internal_page_count, pagesOfKB(internal));
    EXPECT_EQ(host.statistics.compressor_page_count, pagesOfKB(compressor));
    EXPECT_EQ(host.statistics.wire_count, pagesOfKB(16122588 - 7310244 - internal - compressor));
    EXPECT_EQ(host.statistics.purgeable_count, 0U);
    EXPECT_EQ(host.statistics.speculative_count, 0U);
}

TEST(LinuxKernel, ReadsAServerWithAProcessorOffline) {
    LinuxKernel kernel(recordedMachine("server"));
    EXPECT_EQ(kernel.logicalCPUCount(), 63);
    const HostProcessorInfo info = kernel.hostProcessorInfo();
    EXPECT_EQ(info.result, 0);
    EXPECT_EQ(info.processorCount, 63U);
    ASSERT_TRUE(info.words);
    EXPECT_THAT(*info.words, SizeIs(63U * 4));
    EXPECT_EQ(kernel.swapUsage()->total, 0U);
    EXPECT_EQ(kernel.swapUsage()->used, 0U);
    // Huge pages are taken out of the free memory and named nowhere else.
    EXPECT_GT(kernel.hostStatistics64().statistics.wire_count, pagesOfKB(4194304));
}

TEST(LinuxKernel, ReadsAnOldKernel) {
    LinuxKernel kernel(recordedMachine("old-kernel"));
    EXPECT_EQ(kernel.logicalCPUCount(), 2);
    EXPECT_EQ(kernel.hostProcessorInfo().processorCount, 2U);
    EXPECT_EQ(kernel.memorySize(), 1035344 * kB);
    const HostStatistics host = kernel.hostStatistics64();
    ASSERT_EQ(host.result, 0);
    EXPECT_EQ(host.statistics.external_page_count, pagesOfKB(120348 + 612604));
    EXPECT_EQ(host.statistics.internal_page_count, pagesOfKB(187620));
    EXPECT_EQ(host.statistics.compressor_page_count, 0U);
}

TEST(LinuxKernel, ARecordedMachineStandsStill) {
    LinuxKernel kernel(recordedMachine("laptop"));
    EXPECT_EQ(kernel.wallClockSeconds(), 1767612345 + 190643.27);
}

TEST(LinuxKernel, TheLiveClockIsWhatATreeWithoutAMomentHas) {
    const MachineTree tree("laptop");
    for (const char* text : {"", "soon\n", "190643.27"}) {
        tree.write("proc/uptime", text);
        const double before = wallClockNow();
        const double now = LinuxKernel(tree.root()).wallClockSeconds();
        EXPECT_GE(now, before);
        EXPECT_LE(now, wallClockNow());
    }
}

TEST(LinuxKernel, TheLiveMachineHasTheLiveClock) {
    const double before = wallClockNow();
    const double now = LinuxKernel().wallClockSeconds();
    EXPECT_GE(now, before);
    EXPECT_LE(now, wallClockNow());
}

void expectNothing(LinuxKernel& kernel, int error) {
    EXPECT_EQ(kernel.logicalCPUCount(), std::nullopt);
    EXPECT_EQ(kernel.memorySize(), std::nullopt);
    EXPECT_FALSE(kernel.swapUsage());
    EXPECT_FALSE(kernel.bootTime());
    EXPECT_EQ(kernel.hostProcessorInfo().result, error);
    EXPECT_FALSE(kernel.hostProcessorInfo().words);
    EXPECT_EQ(kernel.hostStatistics64().result, error);
}

TEST(LinuxKernel, ADamagedMachineSaysNothing) {
    LinuxKernel kernel(recordedMachine("damaged"));
    expectNothing(kernel, EIO);
}

TEST(LinuxKernel, EmptyFilesSayNothing) {
    const MachineTree tree;
    tree.write("proc/stat", "");
    tree.write("proc/meminfo", "");
    tree.write("sys/devices/system/cpu/online", "");
    LinuxKernel kernel(tree.root());
    expectNothing(kernel, EIO);
}

TEST(LinuxKernel, AMissingRootSaysNothing) {
    LinuxKernel kernel("/no such machine");
    expectNothing(kernel, ENOENT);
}

TEST(LinuxKernel, FilesMayAppearLaterAndGoAway) {
    const MachineTree tree;
    LinuxKernel kernel(tree.root());
    expectNothing(kernel, ENOENT);
    tree.write("proc/stat", "cpu0 1 2 3 4\nbtime 5\n");
    tree.write("proc/meminfo", memInfoWithTotal(8));
    EXPECT_EQ(kernel.logicalCPUCount(), 1);
    EXPECT_THAT(*kernel.hostProcessorInfo().words, ElementsAre(0, 0, 0, 0));
    EXPECT_EQ(kernel.bootTime()->seconds, 5);
    EXPECT_EQ(kernel.bootTime()->microseconds, 0);
    EXPECT_EQ(kernel.memorySize(), 8 * kB);
    tree.write("proc/stat", "");
    tree.write("proc/meminfo", "");
    expectNothing(kernel, EIO);
}

TEST(LinuxKernel, NoMemoryAtAllIsNoAnswer) {
    const MachineTree tree;
    tree.write("proc/meminfo", memInfoWithTotal(0));
    LinuxKernel kernel(tree.root());
    EXPECT_EQ(kernel.memorySize(), std::nullopt);
    EXPECT_EQ(kernel.hostStatistics64().result, EIO);
}

TEST(LinuxKernel, AProcessorGoingOfflineDoesNotDisturbTheOthers) {
    const MachineTree tree;
    tree.write("proc/stat", "cpu0 10 0 0 90\ncpu1 0 0 0 5000\ncpu2 3000 0 0 3000\n");
    LinuxKernel kernel(tree.root());
    CPUService service(kernel);
    service.readCPUInfo();
    tree.write("proc/stat", "cpu0 10 0 0 100\ncpu2 3010 0 0 3000\n");
    const CPUInfo info = service.readCPUInfo();
    EXPECT_THAT(info.coreUsages, ElementsAre(0.0, 100.0));
    EXPECT_EQ(info.usagePercentage, 50.0);
}

// Cut anywhere: a true figure or the failure of the platform, and never a crash.
TEST(LinuxKernel, TruncatedFilesGiveNeutralRecords) {
    const MachineTree tree("laptop");
    LinuxKernel kernel(tree.root());
    for (std::size_t size = recordedFile("laptop", "proc/stat").size(); size-- > 0;) {
        tree.truncate("proc/stat", size);
        CPUService service(kernel);
        service.readCPUInfo();
        const CPUInfo info = service.readCPUInfo();
        ASSERT_EQ(info.usagePercentage, 0.0) << size;
        ASSERT_EQ(info.idlePercentage, 100.0) << size;
        ASSERT_EQ(info.coreCount, 8) << size;
        ASSERT_THAT(info.coreUsages, Each(0.0)) << size;
    }
    MemoryService service(kernel);
    for (std::size_t size = recordedFile("laptop", "proc/meminfo").size(); size-- > 0;) {
        tree.truncate("proc/meminfo", size);
        const MemoryInfo info = service.readMemoryInfo();
        ASSERT_TRUE(info.total == 0 || info.total == 16122588 * kB) << size;
        ASSERT_LE(info.used, info.total) << size;
        ASSERT_LE(info.free + info.cached, info.total) << size;
    }
}

// -- One reading of the memory file for one sample ---------------------------------------------

class SharedReading : public ::testing::Test {
 protected:
    void setTotal(std::uint64_t kibibytes) {
        tree.write("proc/meminfo", memInfoWithTotal(kibibytes));
    }

    const MachineTree tree;
    double now = 1000;
    LinuxKernel kernel{tree.root(), [this] { return now; }};
};

TEST_F(SharedReading, TheQuestionsOfOneSampleShareIt) {
    setTotal(400);
    EXPECT_EQ(kernel.memorySize(), 400 * kB);
    tree.write("proc/meminfo", "");
    EXPECT_EQ(kernel.hostStatistics64().result, 0);
    EXPECT_EQ(kernel.swapUsage()->used, 60 * kB);
}

TEST_F(SharedReading, AQuestionAskedAgainIsReadAnew) {
    setTotal(400);
    EXPECT_EQ(kernel.memorySize(), 400 * kB);
    setTotal(800);
    EXPECT_EQ(kernel.memorySize(), 800 * kB);
    EXPECT_EQ(kernel.hostStatistics64().result, 0);
    tree.write("proc/meminfo", "");
    EXPECT_EQ(kernel.hostStatistics64().result, EIO);
    EXPECT_EQ(kernel.memorySize(), std::nullopt);
    setTotal(1200);
    EXPECT_FALSE(kernel.swapUsage());
    EXPECT_EQ(kernel.swapUsage()->total, 100 * kB);
}

TEST_F(SharedReading, AnOldReadingIsNotUsed) {
    setTotal(400);
    EXPECT_EQ(kernel.memorySize(), 400 * kB);
    tree.write("proc/meminfo", "");
    now += 0.099;
    EXPECT_EQ(kernel.hostStatistics64().result, 0);
    now += 0.002;
    EXPECT_FALSE(kernel.swapUsage());
}

TEST_F(SharedReading, AReadingFromTheFutureIsNotUsed) {
    setTotal(400);
    EXPECT_EQ(kernel.memorySize(), 400 * kB);
    tree.write("proc/meminfo", "");
    now -= 1;
    EXPECT_EQ(kernel.hostStatistics64().result, EIO);
}

TEST(LinuxKernel, ThreadsMaySampleAtOnce) {
    LinuxKernel kernel(recordedMachine("laptop"));
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&kernel, &wrong] {
            for (int turn = 0; turn < 200; ++turn) {
                const bool right = kernel.logicalCPUCount() == 8 &&
                                   kernel.memorySize() == 16122588 * kB &&
                                   kernel.hostStatistics64().result == 0 &&
                                   kernel.swapUsage()->total == 8061288 * kB &&
                                   kernel.hostProcessorInfo().processorCount == 8 &&
                                   kernel.bootTime()->seconds == 1767612345;
                wrong += right ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

// -- Compressed memory --------------------------------------------------------------------------

class CompressedMemory : public ::testing::Test {
 protected:
    CompressedMemory() {
        setSwap(8061288);
        tree.write("proc/swaps",
                   "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n"
                   "/dev/zram0 partition 1 0 100\n/dev/zram1 partition 1 0 100\n"
                   "/dev/zram12 partition 1 0 100\n/dev/zram2 partition 1 0 100\n");
    }

    void setSwap(std::uint64_t kibibytes) {
        tree.write("proc/meminfo", "MemTotal: 16000000 kB\nMemFree: 8000000 kB\nSwapTotal: " +
                                       std::to_string(kibibytes) + " kB\nSwapFree: 0 kB\n");
    }

    std::uint64_t compressed() {
        return kernel.hostStatistics64().statistics.compressor_page_count * kernel.pageSize();
    }

    const MachineTree tree;
    double now = 1000;
    LinuxKernel kernel{tree.root(), [this] { return now; }};
};

TEST_F(CompressedMemory, AllDevicesWithSwapAreSummedUp) {
    tree.write("sys/block/zram0/mm_stat", "9 9 6553600 0 0 0 0 0 0\n");
    tree.write("sys/block/zram12/mm_stat", "9 9 13107200 0 0 0 0 0 0\n");
    tree.write("sys/block/zram2/mm_stat", "rubbish\n");
    tree.write("sys/block/zram3/mm_stat", "9 9 9999999 0 0 0 0 0 0\n");
    tree.write("sys/block/sda/mm_stat", "9 9 9999999 0 0 0 0 0 0\n");
    EXPECT_EQ(compressed(), 19660800U);
    tree.write("sys/block/zram0/mm_stat", "9 9 655360 0 0 0 0 0 0\n");
    EXPECT_EQ(compressed(), 13762560U);
}

TEST_F(CompressedMemory, DevicesAreLookedForAgainWhenTheSwapSpaceChanges) {
    tree.write("sys/block/zram7/mm_stat", "9 9 6553600 0 0 0 0 0 0\n");
    EXPECT_EQ(compressed(), 0U);
    tree.write("proc/swaps", "/dev/zram7 partition 1 0 100\n");
    EXPECT_EQ(compressed(), 0U);
    setSwap(9000000);
    EXPECT_EQ(compressed(), 6553600U);
}

TEST_F(CompressedMemory, DevicesAreLookedForAgainEveryMinute) {
    tree.write("sys/block/zram7/mm_stat", "9 9 6553600 0 0 0 0 0 0\n");
    EXPECT_EQ(compressed(), 0U);
    tree.write("proc/swaps", "/dev/zram7 partition 1 0 100\n");
    now += 59.9;
    EXPECT_EQ(compressed(), 0U);
    now += 0.2;
    EXPECT_EQ(compressed(), 6553600U);
}

TEST_F(CompressedMemory, DevicesAreLookedForAgainWhenTheClockWentBack) {
    tree.write("sys/block/zram7/mm_stat", "9 9 6553600 0 0 0 0 0 0\n");
    EXPECT_EQ(compressed(), 0U);
    tree.write("proc/swaps", "/dev/zram7 partition 1 0 100\n");
    now -= 1;
    EXPECT_EQ(compressed(), 6553600U);
}

TEST_F(CompressedMemory, ADeviceThatIsFoundAgainCountsOnce) {
    tree.write("sys/block/zram0/mm_stat", "9 9 6553600 0 0 0 0 0 0\n");
    EXPECT_EQ(compressed(), 6553600U);
    now += 60;
    EXPECT_EQ(compressed(), 6553600U);
}

TEST_F(CompressedMemory, ADeviceThatIsGoneCountsNoMore) {
    tree.write("sys/block/zram0/mm_stat", "9 9 6553600 0 0 0 0 0 0\n");
    EXPECT_EQ(compressed(), 6553600U);
    tree.remove("proc/swaps");
    EXPECT_EQ(compressed(), 6553600U);
    now += 60;
    EXPECT_EQ(compressed(), 0U);
}

TEST_F(CompressedMemory, ADeviceWithoutStatisticsIsTriedAgain) {
    tree.makeFolder("sys/block/zram0");
    EXPECT_EQ(compressed(), 0U);
    tree.write("sys/block/zram0/mm_stat", "9 9 6553600 0 0 0 0 0 0\n");
    EXPECT_EQ(compressed(), 6553600U);
}

TEST_F(CompressedMemory, AbsurdSumsCountAsNothing) {
    tree.write("sys/block/zram0/mm_stat", "9 9 18446744073709551615 0 0 0 0 0 0\n");
    EXPECT_EQ(compressed(), 0U);
    // Whichever of the two is read first.
    tree.write("sys/block/zram1/mm_stat", "9 9 6553600 0 0 0 0 0 0\n");
    now += 60;
    EXPECT_EQ(compressed(), 0U);
}

}  // namespace
}  // namespace tarnwick::platform
