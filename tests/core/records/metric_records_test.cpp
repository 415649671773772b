// SPDX-License-Identifier: MIT
#include "core/records/metric_records.h"

#include <gtest/gtest.h>
#include <limits>
#include <type_traits>
#include <unordered_set>
#include <vector>

#include "platform/testing/joined_thread.h"

namespace tarnwick {
namespace {

template <class T>
concept HasEquality = requires(const T& a, const T& b) {
    a == b;
};

TEST(MetricRecords, EmptyCPUIsIdleAndHasNoCores) {
    const CPUInfo cpu;
    EXPECT_EQ(cpu.usagePercentage, 0);
    EXPECT_EQ(cpu.userPercentage, 0);
    EXPECT_EQ(cpu.systemPercentage, 0);
    EXPECT_EQ(cpu.idlePercentage, 100);
    EXPECT_EQ(cpu.coreCount, 0);
    EXPECT_TRUE(cpu.coreUsages.empty());
}

TEST(MetricRecords, EmptyGPUIsUnavailable) {
    const GPUInfo gpu;
    EXPECT_EQ(gpu.usagePercentage, 0);
    EXPECT_EQ(gpu.rendererUtilizationPercentage, 0);
    EXPECT_EQ(gpu.tilerUtilizationPercentage, 0);
    EXPECT_EQ(gpu.modelName, "");
    EXPECT_EQ(gpu.coreCount, 0);
    EXPECT_FALSE(gpu.isAvailable);
}

TEST(MetricRecords, EmptyMemoryIsAllZero) {
    const MemoryInfo memory;
    for (const std::uint64_t count :
         {memory.total, memory.used, memory.free, memory.app, memory.wired, memory.compressed,
          memory.cached, memory.swapUsed, memory.swapTotal}) {
        EXPECT_EQ(count, 0U);
    }
}

TEST(MetricRecords, EmptyNetworkHasNoSample) {
    const NetworkInfo network;
    EXPECT_EQ(network.downloadBytesPerSecond, 0);
    EXPECT_EQ(network.uploadBytesPerSecond, 0);
    EXPECT_EQ(network.totalReceivedBytes, 0U);
    EXPECT_EQ(network.totalSentBytes, 0U);
    EXPECT_FALSE(network.hasSample);
}

TEST(MetricRecords, EmptyBatteryIsNoBattery) {
    const BatteryInfo battery;
    EXPECT_EQ(battery.percentage, 0);
    EXPECT_FALSE(battery.isCharging);
    EXPECT_FALSE(battery.isPluggedIn);
    EXPECT_FALSE(battery.health.has_value());
    EXPECT_FALSE(battery.healthSource.has_value());
    EXPECT_EQ(battery.healthCondition, "");
    EXPECT_FALSE(battery.cycleCount.has_value());
    EXPECT_EQ(battery.timeRemaining, 0);
    EXPECT_FALSE(battery.hasBattery);
}

TEST(MetricRecords, EmptySystemHasNoUptime) {
    EXPECT_EQ(SystemInfo{}.uptime, 0);
}

TEST(MetricRecords, EmptySnapshotCarriesNoProcessLists) {
    const FastRefreshSnapshot snapshot;
    EXPECT_FALSE(snapshot.topCPUProcesses.has_value());
    EXPECT_FALSE(snapshot.topMemoryProcesses.has_value());
    EXPECT_EQ(snapshot.cpu.idlePercentage, 100);
}

// Each field gets a value that no other field of its record has: an exchange of two would show.
TEST(MetricRecords, FieldsAreBuiltInTheirOrder) {
    const UUID identity = UUID::random();
    const UsageSample sample{identity, 1.5, 2.5};
    EXPECT_EQ(sample.id, identity);
    EXPECT_EQ(sample.timestamp, 1.5);
    EXPECT_EQ(sample.value, 2.5);

    EXPECT_EQ(SystemInfo{7}.uptime, 7);

    const CPUInfo cpu{1, 2, 3, 4, 5, {6, 7}};
    EXPECT_EQ(cpu.usagePercentage, 1);
    EXPECT_EQ(cpu.userPercentage, 2);
    EXPECT_EQ(cpu.systemPercentage, 3);
    EXPECT_EQ(cpu.idlePercentage, 4);
    EXPECT_EQ(cpu.coreCount, 5);
    EXPECT_EQ(cpu.coreUsages, (std::vector<double>{6, 7}));

    const GPUInfo gpu{1, 2, 3, "model", 4, true};
    EXPECT_EQ(gpu.usagePercentage, 1);
    EXPECT_EQ(gpu.rendererUtilizationPercentage, 2);
    EXPECT_EQ(gpu.tilerUtilizationPercentage, 3);
    EXPECT_EQ(gpu.modelName, "model");
    EXPECT_EQ(gpu.coreCount, 4);
    EXPECT_TRUE(gpu.isAvailable);

    const MemoryInfo memory{1, 2, 3, 4, 5, 6, 7, 8, 9};
    EXPECT_EQ(memory.total, 1U);
    EXPECT_EQ(memory.used, 2U);
    EXPECT_EQ(memory.free, 3U);
    EXPECT_EQ(memory.app, 4U);
    EXPECT_EQ(memory.wired, 5U);
    EXPECT_EQ(memory.compressed, 6U);
    EXPECT_EQ(memory.cached, 7U);
    EXPECT_EQ(memory.swapUsed, 8U);
    EXPECT_EQ(memory.swapTotal, 9U);

    const StorageInfo storage{identity, "Data", 1, 2, 3};
    EXPECT_EQ(storage.id, identity);
    EXPECT_EQ(storage.name, "Data");
    EXPECT_EQ(storage.totalSpace, 1);
    EXPECT_EQ(storage.usedSpace, 2);
    EXPECT_EQ(storage.availableSpace, 3);

    const BatteryInfo battery{1,        true, false, 2,   BatteryHealthSource::ioRegistry,
                              "Normal", 3,    4,     true};
    EXPECT_EQ(battery.percentage, 1);
    EXPECT_TRUE(battery.isCharging);
    EXPECT_FALSE(battery.isPluggedIn);
    EXPECT_EQ(battery.health, 2);
    EXPECT_EQ(battery.healthSource, BatteryHealthSource::ioRegistry);
    EXPECT_EQ(battery.healthCondition, "Normal");
    EXPECT_EQ(battery.cycleCount, 3);
    EXPECT_EQ(battery.timeRemaining, 4);
    EXPECT_TRUE(battery.hasBattery);

    const NetworkInfo network{1, 2, 3, 4, true};
    EXPECT_EQ(network.downloadBytesPerSecond, 1);
    EXPECT_EQ(network.uploadBytesPerSecond, 2);
    EXPECT_EQ(network.totalReceivedBytes, 3U);
    EXPECT_EQ(network.totalSentBytes, 4U);
    EXPECT_TRUE(network.hasSample);

    const AppProcessInfo process{1, "name", 2, 3};
    EXPECT_EQ(process.id, 1);
    EXPECT_EQ(process.name, "name");
    EXPECT_EQ(process.cpuUsage, 2);
    EXPECT_EQ(process.memoryUsage, 3U);

    const FastRefreshSnapshot snapshot{
        cpu, gpu, memory, network, std::vector{process}, std::vector<AppProcessInfo>{}};
    EXPECT_EQ(snapshot.cpu.usagePercentage, 1);
    EXPECT_EQ(snapshot.gpu.modelName, "model");
    EXPECT_EQ(snapshot.memory.swapTotal, 9U);
    EXPECT_TRUE(snapshot.network.hasSample);
    EXPECT_EQ(snapshot.topCPUProcesses.value().size(), 1U);
    EXPECT_TRUE(snapshot.topMemoryProcesses.value().empty());
}

template <class T, class... Fields>
constexpr bool kAllAre = (std::is_same_v<T, Fields> && ...);

TEST(MetricRecords, MemoryAndNetworkCountsAreUnsignedAndStorageCountsSigned) {
    EXPECT_TRUE(
        (kAllAre<std::uint64_t, decltype(MemoryInfo::total), decltype(MemoryInfo::used),
                 decltype(MemoryInfo::free), decltype(MemoryInfo::app), decltype(MemoryInfo::wired),
                 decltype(MemoryInfo::compressed), decltype(MemoryInfo::cached),
                 decltype(MemoryInfo::swapUsed), decltype(MemoryInfo::swapTotal),
                 decltype(NetworkInfo::totalReceivedBytes), decltype(NetworkInfo::totalSentBytes),
                 decltype(AppProcessInfo::memoryUsage)>));
    EXPECT_TRUE((kAllAre<std::int64_t, decltype(StorageInfo::totalSpace),
                         decltype(StorageInfo::usedSpace), decltype(StorageInfo::availableSpace)>));
}

TEST(MetricRecords, CountsAreSignedAndProcessIdentifiersHaveThirtyTwoBits) {
    EXPECT_TRUE((kAllAre<std::int64_t, decltype(CPUInfo::coreCount), decltype(GPUInfo::coreCount),
                         decltype(BatteryInfo::percentage), decltype(BatteryInfo::timeRemaining)>));
    EXPECT_TRUE((kAllAre<std::optional<std::int64_t>, decltype(BatteryInfo::health),
                         decltype(BatteryInfo::cycleCount)>));
    EXPECT_TRUE((kAllAre<std::int32_t, decltype(AppProcessInfo::id)>));
    EXPECT_EQ(sizeof(UUID), 16U);
}

TEST(MetricRecords, MemoryUsageIsZeroWithoutATotal) {
    EXPECT_EQ((MemoryInfo{.total = 0, .used = 5}.usagePercentage()), 0);
    EXPECT_DOUBLE_EQ((MemoryInfo{.total = 16, .used = 12}.usagePercentage()), 75);
}

TEST(MetricRecords, StorageUsageIsZeroBelowATotalOfOne) {
    StorageInfo storage;
    storage.usedSpace = 5;
    EXPECT_EQ(storage.usagePercentage(), 0);
    storage.totalSpace = -10;
    EXPECT_EQ(storage.usagePercentage(), 0);
    storage.totalSpace = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(storage.usagePercentage(), 0);
}

TEST(MetricRecords, StorageUsageIsTheUsedShareOfTheTotal) {
    StorageInfo storage;
    storage.usedSpace = 5;
    storage.totalSpace = 10;
    EXPECT_DOUBLE_EQ(storage.usagePercentage(), 50);
    storage.usedSpace = storage.totalSpace = 1;
    EXPECT_DOUBLE_EQ(storage.usagePercentage(), 100);
}

TEST(MetricRecords, ProcessesAreEqualOnlyInAllFields) {
    const AppProcessInfo process{.id = 7, .name = "a", .cpuUsage = 1, .memoryUsage = 2};
    AppProcessInfo other = process;
    EXPECT_EQ(process, other);
    other.cpuUsage = 1.5;
    EXPECT_NE(process, other);
    other = process;
    other.name = "b";
    EXPECT_NE(process, other);
    other = process;
    other.memoryUsage = 3;
    EXPECT_NE(process, other);
    other = process;
    other.id = 8;
    EXPECT_NE(process, other);
}

TEST(MetricRecords, OnlyProcessesAndHealthSourcesCompare) {
    EXPECT_TRUE(HasEquality<AppProcessInfo>);
    EXPECT_TRUE(HasEquality<BatteryHealthSource>);
    EXPECT_FALSE(HasEquality<UsageSample>);
    EXPECT_FALSE(HasEquality<StorageInfo>);
    EXPECT_FALSE(HasEquality<SystemInfo>);
    EXPECT_FALSE(HasEquality<CPUInfo>);
    EXPECT_FALSE(HasEquality<GPUInfo>);
    EXPECT_FALSE(HasEquality<MemoryInfo>);
    EXPECT_FALSE(HasEquality<BatteryInfo>);
    EXPECT_FALSE(HasEquality<NetworkInfo>);
    EXPECT_FALSE(HasEquality<FastRefreshSnapshot>);
}

TEST(MetricRecords, HealthSourcesAreThreeInOrderAndHashable) {
    EXPECT_LT(BatteryHealthSource::systemProfiler, BatteryHealthSource::ioRegistry);
    EXPECT_LT(BatteryHealthSource::ioRegistry, BatteryHealthSource::qualitative);
    const std::unordered_set<BatteryHealthSource> sources{BatteryHealthSource::systemProfiler,
                                                          BatteryHealthSource::ioRegistry,
                                                          BatteryHealthSource::qualitative};
    EXPECT_EQ(sources.size(), 3U);
}

TEST(MetricRecords, CopiesShareNothing) {
    CPUInfo cpu;
    cpu.coreUsages = {1, 2};
    CPUInfo copy = cpu;
    copy.coreUsages[0] = 9;
    EXPECT_EQ(cpu.coreUsages[0], 1);

    FastRefreshSnapshot snapshot;
    snapshot.topCPUProcesses.emplace({AppProcessInfo{.id = 1, .name = "a"}});
    FastRefreshSnapshot other = snapshot;
    other.topCPUProcesses->front().name = "b";
    EXPECT_EQ(snapshot.topCPUProcesses->front().name, "a");
}

TEST(MetricRecords, FreshIdentitiesAreRandomVersionFour) {
    std::unordered_set<UUID> seen;
    UUID everSet;
    UUID everClear;
    for (int i = 0; i < 1000; ++i) {
        const UUID id = UUID::random();
        seen.insert(id);
        for (std::size_t byte = 0; byte < id.bytes.size(); ++byte) {
            everSet.bytes[byte] |= id.bytes[byte];
            everClear.bytes[byte] |= static_cast<std::uint8_t>(~id.bytes[byte]);
        }
    }
    EXPECT_EQ(seen.size(), 1000U);
    // Every bit takes both values, but for the four of the version and the two of the variant.
    for (std::size_t byte = 0; byte < everSet.bytes.size(); ++byte) {
        EXPECT_EQ(everSet.bytes[byte], byte == 6 ? 0x4F : byte == 8 ? 0xBF : 0xFF) << byte;
        EXPECT_EQ(everClear.bytes[byte], byte == 6 ? 0xBF : byte == 8 ? 0x7F : 0xFF) << byte;
    }
}

TEST(MetricRecords, IdentitiesOfSeveralThreadsAreAllDistinct) {
    std::vector<std::vector<UUID>> made(4);
    {
        std::vector<platform::testing::JoinedThread> threads;
        for (std::vector<UUID>& own : made) {
            threads.emplace_back([&own] {
                for (int i = 0; i < 250; ++i) {
                    own.push_back(UUID::random());
                }
            });
        }
    }
    std::unordered_set<UUID> seen;
    for (const std::vector<UUID>& own : made) {
        seen.insert(own.begin(), own.end());
    }
    EXPECT_EQ(seen.size(), 1000U);
}

struct DisplayNameCase {
    const char* label;
    const char* model;
    std::int64_t cores;
    const char* expected;
};

class GPUDisplayName : public testing::TestWithParam<DisplayNameCase> {};

TEST_P(GPUDisplayName, JoinsWhatIsKnown) {
    GPUInfo gpu;
    gpu.modelName = GetParam().model;
    gpu.coreCount = GetParam().cores;
    EXPECT_EQ(gpu.displayName(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    , GPUDisplayName,
    testing::Values(DisplayNameCase{"NameAndCores", "Radeon 780M", 12, "Radeon 780M 12-core"},
                    DisplayNameCase{"NameAlone", "Radeon 780M", 0, "Radeon 780M"},
                    DisplayNameCase{"NegativeCores", "Radeon 780M", -3, "Radeon 780M"},
                    DisplayNameCase{"OneCore", "Radeon 780M", 1, "Radeon 780M 1-core"},
                    DisplayNameCase{"TrimmedName", " \t\nArc A770\r\n ", 0, "Arc A770"},
                    DisplayNameCase{"NoName", "", 10, "10-core"},
                    DisplayNameCase{"BlankName", "  ", 10, "10-core"},
                    DisplayNameCase{"BlankNameNoCores", "   ", 0, "System GPU"},
                    DisplayNameCase{"Nothing", "", 0, "System GPU"}),
    [](const auto& row) { return std::string(row.param.label); });

}  // namespace
}  // namespace tarnwick
