// The readers on the machine that runs the tests, beside the tools that people trust.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <sched.h>
#include <sstream>
#include <stdio.h>
#include <string>
#include <time.h>
#include <variant>
#include <vector>

#include "platform/linux/kernel/linux_kernel.h"
#include "platform/linux/power/linux_process_info.h"
#include "platform/linux/volumes/linux_volumes.h"
#include "services/cpu_service.h"
#include "services/memory_service.h"
#include "services/storage_service.h"
#include "services/system_uptime.h"

namespace tarnwick::platform {
namespace {

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

struct Free {
    std::vector<std::int64_t> memory;  // total used free shared buff/cache available
    std::vector<std::int64_t> swap;    // total used free
};

Free freeTool() {
    const std::string text = outputOf("free -b");
    return {numbersAfter(text, "Mem:"), numbersAfter(text, "Swap:")};
}

bool between(std::uint64_t value, std::int64_t one, std::int64_t other) {
    // What other programs take or give back between the readings.
    constexpr std::int64_t slack = std::int64_t{8} << 20;
    const auto figure = static_cast<std::int64_t>(value);
    return figure >= std::min(one, other) - slack && figure <= std::max(one, other) + slack;
}

TEST(LiveMachine, MemoryAgreesWithFree) {
    if (freeTool().memory.size() < 6) {
        GTEST_SKIP() << "free is not installed";
    }
    LinuxKernel kernel;
    MemoryService service(kernel);
    bool agreed = false;
    std::string last;
    // On a busy machine some readings lie too far apart.
    for (int turn = 0; turn < 100 && !agreed; ++turn) {
        const Free before = freeTool();
        const MemoryInfo info = service.readMemoryInfo();
        const Free after = freeTool();
        const auto& a = before.memory;
        const auto& b = after.memory;
        EXPECT_EQ(static_cast<std::int64_t>(info.total), a[0]);
        EXPECT_EQ(static_cast<std::int64_t>(info.swapTotal), before.swap[0]);
        // Of "buff/cache" the shared memory belongs to programs.
        agreed = between(info.free, a[2], b[2]) && between(info.cached, a[4] - a[3], b[4] - b[3]) &&
                 between(info.used, a[0] - a[2] - a[4] + a[3], b[0] - b[2] - b[4] + b[3]) &&
                 between(info.swapUsed, before.swap[1], after.swap[1]);
        std::ostringstream text;
        text << "free " << info.free << " cached " << info.cached << " used " << info.used
             << " swap " << info.swapUsed << "; free(1): " << b[2] << ' ' << b[4] - b[3] << ' '
             << b[0] - b[2] - b[4] + b[3] << ' ' << after.swap[1];
        last = text.str();
    }
    EXPECT_TRUE(agreed) << last;
}

TEST(LiveMachine, MemoryIsDividedUpWithoutRemainder) {
    LinuxKernel kernel;
    const MemoryInfo info = MemoryService(kernel).readMemoryInfo();
    EXPECT_GT(info.app, 0U);
    EXPECT_GT(info.wired, 0U);
    EXPECT_EQ(info.used, info.app + info.wired + info.compressed);
    EXPECT_LE(info.used + info.free + info.cached, info.total + 4 * kernel.pageSize());
    EXPECT_GE(info.used + info.free + info.cached + 4 * kernel.pageSize(), info.total);
}

TEST(LiveMachine, CapacityAgreesWithDf) {
    LinuxVolumes volumes;
    const std::string home = volumes.homeDirectoryForCurrentUser();
    const std::string command = "df -B1 --output=used,avail,pcent '" + home + "'";
    if (outputOf(command).empty()) {
        GTEST_SKIP() << "df does not know the home directory";
    }
    struct Df {
        std::int64_t used = 0;
        std::int64_t available = 0;
        /// Whole, rounded up.
        int percent = 0;
    };
    bool agreed = false;
    std::ostringstream last;
    // On a busy disk some readings lie too far apart.
    for (int turn = 0; turn < 100 && !agreed; ++turn) {
        const auto df = [&command] {
            std::istringstream text(outputOf(command + " | tail -n 1"));
            Df found;
            text >> found.used >> found.available >> found.percent;
            return found;
        };
        const Df before = df();
        const StorageInfo info = StorageService(volumes).readStorageInfo();
        const Df after = df();
        const auto percent = static_cast<int>(std::ceil(
            100.0 * static_cast<double>(info.usedSpace) / static_cast<double>(info.totalSpace)));
        agreed = between(static_cast<std::uint64_t>(info.usedSpace), before.used, after.used) &&
                 between(static_cast<std::uint64_t>(info.availableSpace), before.available,
                         after.available) &&
                 percent >= std::min(before.percent, after.percent) &&
                 percent <= std::max(before.percent, after.percent);
        last.str("");
        last << info.usedSpace << " used, " << info.availableSpace << " available, " << percent
             << " %; df: " << after.used << ", " << after.available << ", " << after.percent;
    }
    EXPECT_TRUE(agreed) << last.str();
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
