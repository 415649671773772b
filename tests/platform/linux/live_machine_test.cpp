// SPDX-License-Identifier: MIT
// The readers on the machine that runs the tests, beside the tools that people trust.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <sched.h>
#include <sstream>
#include <stdio.h>
#include <string>
#include <system_error>
#include <time.h>
#include <variant>
#include <vector>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/kernel/linux_kernel.h"
#include "platform/linux/kernel/proc_stat.h"
#include "platform/linux/network/linux_network_interfaces.h"
#include "platform/linux/power/linux_process_info.h"
#include "platform/linux/volumes/file_system_calls.h"
#include "platform/linux/volumes/linux_volumes.h"
#include "platform/linux/volumes/mountinfo.h"
#include "platform/linux/volumes/volume_label.h"
#include "services/cpu_service.h"
#include "services/memory_service.h"
#include "services/storage_service.h"
#include "services/system_uptime.h"
#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using testing::MachineTree;

std::string outputOf(const std::string& command) {
    FILE* const pipe = ::popen(("LC_ALL=C " + command + " 2>/dev/null").c_str(), "r");
    if (pipe == nullptr) {
        return "";
    }
    std::string output;
    std::array<char, 4096> part;
    std::size_t size = 0;
    while ((size = ::fread(part.data(), 1, part.size(), pipe)) > 0) {
        output.append(part.data(), size);
    }
    return ::pclose(pipe) == 0 ? output : "";
}

// The numbers of a line that begins with this word.
std::vector<std::int64_t> numbersAfter(const std::string& text, const std::string& word) {
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        if (line.rfind(word, 0) == 0) {
            std::istringstream fields(line.substr(word.size()));
            std::vector<std::int64_t> numbers;
            std::int64_t number = 0;
            while (fields >> number) {
                numbers.push_back(number);
            }
            return numbers;
        }
    }
    return {};
}

bool between(std::uint64_t value, std::int64_t one, std::int64_t other) {
    // What other programs take or give back between the readings.
    constexpr std::int64_t slack = std::int64_t{8} << 20;
    const auto figure = static_cast<std::int64_t>(value);
    return figure >= std::min(one, other) - slack && figure <= std::max(one, other) + slack;
}

// Copies a file of the kernel into a tree. The tools are then run with the copy in the place of the
// file, so that both read the same moment and their figures can be compared without any tolerance.
class OneMoment {
 public:
    explicit OneMoment(const char* path) : path_(path) {
        tree.write(path_, readWholeFile(belowRoot("/", path_)).value_or(""));
    }

    /// Empty if the tool is not installed or the machine allows no private mounts.
    std::string outputOf(const std::string& tool) const {
        return platform::outputOf("unshare -rm sh -c 'mount --bind " + tree.root() + "/" + path_ +
                                  " /" + path_ + " && " + tool + "'");
    }

    const MachineTree tree;

 private:
    const std::string path_;
};

TEST(LiveMachine, MemoryAgreesWithFreeToThePage) {
    const OneMoment moment("proc/meminfo");
    const std::string text = moment.outputOf("free -b");
    if (outputOf("free --version").find("procps-ng 4") == std::string::npos || text.empty()) {
        GTEST_SKIP() << "no free that knows the available memory, or no private mounts";
    }
    // total used free shared buff/cache available
    const std::vector<std::int64_t> memory = numbersAfter(text, "Mem:");
    const std::vector<std::int64_t> swap = numbersAfter(text, "Swap:");
    ASSERT_GE(memory.size(), 6U);
    ASSERT_GE(swap.size(), 3U);
    // Without the root's other files there is neither ZFS nor zram, of which free knows nothing.
    LinuxKernel kernel(moment.tree.root());
    const MemoryInfo info = MemoryService(kernel).readMemoryInfo();
    EXPECT_EQ(static_cast<std::int64_t>(info.total), memory[0]);
    EXPECT_EQ(static_cast<std::int64_t>(info.used), memory[1]);
    EXPECT_EQ(static_cast<std::int64_t>(info.free), std::min(memory[2], memory[5]));
    EXPECT_LE(static_cast<std::int64_t>(info.cached), memory[4]);
    EXPECT_EQ(static_cast<std::int64_t>(info.swapTotal), swap[0]);
    EXPECT_EQ(static_cast<std::int64_t>(info.swapUsed), swap[1]);
}

TEST(LiveMachine, MemoryIsThatOfThisMoment) {
    const auto freeTool = [] { return numbersAfter(outputOf("free -b"), "Mem:"); };
    if (freeTool().size() < 6) {
        GTEST_SKIP() << "free is not installed";
    }
    if (readWholeFile("/proc/spl/kstat/zfs/arcstats")) {
        GTEST_SKIP() << "free knows nothing of this machine's ZFS cache";
    }
    LinuxKernel kernel;
    MemoryService service(kernel);
    bool agreed = false;
    // On a busy machine some readings lie too far apart.
    for (int turn = 0; turn < 100 && !agreed; ++turn) {
        const std::vector<std::int64_t> before = freeTool();
        const MemoryInfo info = service.readMemoryInfo();
        const std::vector<std::int64_t> after = freeTool();
        agreed = between(info.total - info.used, before[5], after[5]) &&
                 between(info.free, before[2], after[2]);
    }
    EXPECT_TRUE(agreed);
}

TEST(LiveMachine, MemoryIsDividedUpWithoutRemainder) {
    LinuxKernel kernel;
    const MemoryInfo info = MemoryService(kernel).readMemoryInfo();
    EXPECT_GT(info.app, 0U);
    EXPECT_GT(info.wired, 0U);
    EXPECT_EQ(info.used, info.app + info.wired + info.compressed);
    EXPECT_LE(info.used + info.free + info.cached, info.total);
}

/// The columns of df for the home directory's file system.
struct Df {
    std::string source;
    std::int64_t size = 0;
    std::int64_t used = 0;
    std::int64_t available = 0;
    /// Whole, rounded up.
    int percent = 0;
    std::string mountPoint;
};

std::optional<Df> dfTool(const std::string& path) {
    std::istringstream text(
        outputOf("df -B1 --output=source,size,used,avail,pcent,target '" + path + "' | tail -n 1"));
    Df found;
    char sign = 0;
    text >> found.source >> found.size >> found.used >> found.available >> found.percent >> sign >>
        std::ws;
    std::getline(text, found.mountPoint);
    return text.fail() || sign != '%' ? std::nullopt : std::optional(found);
}

TEST(LiveMachine, CapacityAgreesWithDf) {
    LinuxVolumes volumes;
    const std::string home = volumes.homeDirectoryForCurrentUser();
    const std::optional<Mount> mount =
        mountOf(readWholeFile("/proc/self/mountinfo").value_or(""), home);
    if (!dfTool(home) || !mount || hasUserQuota(*mount)) {
        GTEST_SKIP() << "df does not know the home directory, or knows nothing of its quota";
    }
    bool agreed = false;
    std::ostringstream last;
    // On a busy disk some readings lie too far apart.
    for (int turn = 0; turn < 100 && !agreed; ++turn) {
        const Df before = *dfTool(home);
        const StorageInfo info = StorageService(volumes).readStorageInfo();
        const Df after = *dfTool(home);
        const auto percent = static_cast<int>(std::ceil(
            100.0 * static_cast<double>(info.usedSpace) / static_cast<double>(info.totalSpace)));
        agreed = between(static_cast<std::uint64_t>(info.usedSpace), before.used, after.used) &&
                 between(static_cast<std::uint64_t>(info.availableSpace), before.available,
                         after.available) &&
                 percent >= std::min(before.percent, after.percent) &&
                 percent <= std::max(before.percent, after.percent);
        // df's size has the system's reserve in it, which is no part of ours.
        EXPECT_LE(info.totalSpace, std::max(before.size, after.size));
        last.str("");
        last << info.usedSpace << " used, " << info.availableSpace << " available, " << percent
             << " %; df: " << after.used << ", " << after.available << ", " << after.percent;
    }
    EXPECT_TRUE(agreed) << last.str();
}

TEST(LiveMachine, TheVolumeIsTheOneThatDfNames) {
    LinuxVolumes volumes;
    const std::string home = volumes.homeDirectoryForCurrentUser();
    const std::optional<Df> df = dfTool(home);
    std::error_code error;
    const std::optional<Mount> mount = mountOf(readWholeFile("/proc/self/mountinfo").value_or(""),
                                               std::filesystem::canonical(home, error).native());
    if (!df || error) {
        GTEST_SKIP() << "df does not know the home directory";
    }
    ASSERT_TRUE(mount);
    EXPECT_EQ(mount->mountPoint, df->mountPoint);
    EXPECT_EQ(mount->source, df->source);
    const std::optional<std::string> label = labelOf("/", *mount);
    const std::string name = StorageService(volumes).readStorageInfo().name;
    EXPECT_TRUE(name == df->mountPoint || label == name ||
                systemCalls().label(df->mountPoint) == name)
        << name;
}

TEST(LiveMachine, TheVolumeHasAName) {
    LinuxVolumes volumes;
    const auto values = volumes.resourceValues("/");
    ASSERT_TRUE(std::holds_alternative<VolumeResourceValues>(values));
    const auto& name = std::get<VolumeResourceValues>(values).name;
    ASSERT_TRUE(name);
    EXPECT_FALSE(name->empty());
}

TEST(LiveMachine, ProcessorsAgreeWithTheTools) {
    LinuxKernel kernel;
    const std::int32_t count = kernel.logicalCPUCount().value_or(0);
    EXPECT_EQ(count, std::atoi(outputOf("getconf _NPROCESSORS_ONLN").c_str()));
    EXPECT_EQ(LinuxProcessInfo().activeProcessorCount(), count);
    cpu_set_t allowed;
    ASSERT_EQ(::sched_getaffinity(0, sizeof allowed, &allowed), 0);
    if (CPU_COUNT(&allowed) == count) {
        EXPECT_EQ(count,
                  std::atoi(outputOf("env -u OMP_NUM_THREADS -u OMP_THREAD_LIMIT nproc").c_str()));
    }
    EXPECT_EQ(kernel.hostProcessorInfo().processorCount, static_cast<std::uint32_t>(count));
}

// Since boot, which is the tool's answer without an interval.
TEST(LiveMachine, SharesOfEachProcessorAgreeWithMpstat) {
    const OneMoment moment("proc/stat");
    const std::string text = moment.outputOf("mpstat -P ALL -o JSON");
    if (text.empty()) {
        GTEST_SKIP() << "mpstat is not installed, or no private mounts";
    }
    const std::string now = readWholeFile(moment.tree.root() + "/proc/stat").value_or("");
    std::vector<ProcessorTicks> processors;
    ASSERT_TRUE(parseProcessorTicks(now, processors));
    for (const ProcessorTicks& processor : processors) {
        if (std::ranges::max(processor.columns) > std::numeric_limits<std::uint32_t>::max()) {
            GTEST_SKIP() << "this machine has run for longer than the ticks of one step can be";
        }
    }
    std::string atBoot;
    for (const ProcessorTicks& processor : processors) {
        atBoot += "cpu" + std::to_string(processor.processor) + " 0 0 0 0 0 0 0 0 0 0\n";
    }
    moment.tree.write("proc/stat", atBoot);
    LinuxKernel kernel(moment.tree.root());
    CPUService service(kernel);
    service.readCPUInfo();
    moment.tree.write("proc/stat", now);
    const CPUInfo info = service.readCPUInfo();

    const auto shares =
        nlohmann::json::parse(text)["sysstat"]["hosts"][0]["statistics"][0]["cpu-load"];
    ASSERT_EQ(shares.size(), info.coreUsages.size() + 1);
    const auto sum = [&shares](std::size_t row, const std::vector<const char*>& columns) {
        double share = 0;
        for (const char* const column : columns) {
            share += shares[row][column].get<double>();
        }
        return share;
    };
    // The tool rounds each of its columns to hundredths.
    EXPECT_NEAR(info.userPercentage, sum(0, {"usr", "guest"}), 0.011);
    EXPECT_NEAR(info.systemPercentage, sum(0, {"sys", "irq", "soft", "steal"}), 0.021);
    EXPECT_NEAR(info.idlePercentage, sum(0, {"idle", "iowait"}), 0.011);
    EXPECT_NEAR(info.usagePercentage, 100 - sum(0, {"idle", "iowait"}), 0.011);
    for (std::size_t row = 1; row < shares.size(); ++row) {
        EXPECT_NEAR(info.coreUsages[row - 1], 100 - sum(row, {"idle", "iowait"}), 0.011) << row;
    }
}

TEST(LiveMachine, TicksGrowAndSharesAddUp) {
    LinuxKernel kernel;
    CPUService service(kernel);
    service.readCPUInfo();
    const auto busyTicks = [&kernel] {
        const HostProcessorInfo info = kernel.hostProcessorInfo();
        std::uint32_t sum = 0;
        for (std::size_t index = 0; index < info.words->size(); ++index) {
            sum += index % 4 == 2 ? 0 : (*info.words)[index];
        }
        return sum;
    };
    // Busy until the kernel has counted a few ticks of it; each takes some milliseconds.
    const std::uint32_t start = busyTicks();
    while (busyTicks() - start < 5) {
    }
    const CPUInfo info = service.readCPUInfo();
    EXPECT_GT(info.usagePercentage, 0.0);
    EXPECT_LE(info.usagePercentage, 100.0);
    EXPECT_LE(info.userPercentage + info.systemPercentage + info.idlePercentage, 100.001);
    EXPECT_EQ(info.coreUsages.size(), static_cast<std::size_t>(info.coreCount));
}

TEST(LiveMachine, CountersAgreeWithIp) {
    const auto ipTool = [] {
        InterfaceTable table;
        const std::string text = outputOf("ip -json -s link");
        for (const auto& link : nlohmann::json::parse(text.empty() ? "[]" : text)) {
            const auto& figures = link.at("stats64");
            table[link.at("ifindex").get<std::uint32_t>()] = {
                .received = figures.at("rx").at("bytes").get<std::uint64_t>(),
                .sent = figures.at("tx").at("bytes").get<std::uint64_t>(),
                .uses32BitCounters = false};
        }
        return table;
    };
    LinuxNetworkInterfaces interfaces;
    const InterfaceTable before = ipTool();
    const auto table = interfaces.interfaceCounters();
    const InterfaceTable after = ipTool();
    if (before.empty()) {
        GTEST_SKIP() << "ip is not installed";
    }
    ASSERT_TRUE(table);
    const auto isUp = outputOf("ip -o link show up | grep -v LOOPBACK");
    EXPECT_EQ(table->empty(), isUp.empty()) << isUp;
    for (const auto& [index, counters] : *table) {
        ASSERT_TRUE(before.contains(index) && after.contains(index)) << index;
        EXPECT_GE(counters.received, before.at(index).received) << index;
        EXPECT_LE(counters.received, after.at(index).received) << index;
        EXPECT_GE(counters.sent, before.at(index).sent) << index;
        EXPECT_LE(counters.sent, after.at(index).sent) << index;
    }
}

double kernelUptime() {
    double seconds = 0;
    std::ifstream("/proc/uptime") >> seconds;
    return seconds;
}

double secondsOf(clockid_t clock) {
    timespec now{};
    ::clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

TEST(LiveMachine, UptimeAgreesWithTheKernels) {
    LinuxKernel kernel;
    const double before = kernelUptime();
    ASSERT_GT(before, 0);
    const double uptime = readUptime(kernel);
    // The boot time has no fractions, and the clocks may be steered apart meanwhile.
    EXPECT_GE(uptime, before - 1.0);
    EXPECT_LE(uptime, kernelUptime() + 2.0);
}

TEST(LiveMachine, EachClockIsTheOneThatItSays) {
    LinuxKernel kernel;
    const auto expectBetween = [](clockid_t clock, const std::function<double()>& reading) {
        const double before = secondsOf(clock);
        const double value = reading();
        EXPECT_GE(value, before) << clock;
        EXPECT_LE(value, secondsOf(clock)) << clock;
    };
    expectBetween(CLOCK_MONOTONIC_RAW, [&kernel] { return kernel.monotonicSeconds(); });
    expectBetween(CLOCK_REALTIME, [&kernel] { return kernel.wallClockSeconds(); });
    expectBetween(CLOCK_BOOTTIME, sinceBootSeconds);
}

TEST(LiveMachine, HeatIsOneOfFourStates) {
    const std::int64_t state = LinuxProcessInfo().thermalState();
    EXPECT_GE(state, kUnknownThermalState);
    EXPECT_LE(state, 3);
}

}  // namespace
}  // namespace tarnwick::platform
