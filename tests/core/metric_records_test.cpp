#include "core/metric_records.h"

#include <gtest/gtest.h>
#include <type_traits>
#include <unordered_set>

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
    storage.totalSpace = 10;
    EXPECT_DOUBLE_EQ(storage.usagePercentage(), 50);
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
    for (int i = 0; i < 1000; ++i) {
        const UUID id = UUID::random();
        EXPECT_EQ(id.bytes[6] >> 4, 4);
        EXPECT_EQ(id.bytes[8] >> 6, 2);
        seen.insert(id);
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
