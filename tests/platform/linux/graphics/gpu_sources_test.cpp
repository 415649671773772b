// The drivers' own sources of utilisation.
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>

#include "platform/linux/graphics/amdgpu_source.h"
#include "platform/linux/graphics/intel_source.h"
#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using testing::MachineTree;
using testing::recordedMachine;

class AmdgpuSourceTest : public ::testing::Test {
 protected:
    std::optional<double> busyOf(std::string_view text) {
        tree.write("device/gpu_busy_percent", text);
        const auto utilization = source.read(0);
        return utilization ? std::optional(utilization->device) : std::nullopt;
    }
    void setNode(int node, std::string_view properties) {
        tree.write("sys/class/kfd/kfd/topology/nodes/" + std::to_string(node) + "/properties",
                   properties);
    }

    const MachineTree tree;
    AmdgpuSource source{tree.root(), tree.root() + "/device", "0000:0b:00.0"};
};

TEST_F(AmdgpuSourceTest, TheUtilizationIsTheFirmwaresOwn) {
    EXPECT_EQ(source.read(0), std::nullopt);
    EXPECT_EQ(busyOf("0\n"), 0);
    EXPECT_EQ(busyOf("37\n"), 37);
    EXPECT_EQ(busyOf("100\n"), 100);
    EXPECT_EQ(source.read(0)->renderer, std::nullopt);
}

TEST_F(AmdgpuSourceTest, WhatIsNoPercentageIsAbsent) {
    for (const std::string_view text : {"", "101\n", "4294967295\n", "-1\n", "busy\n", "37"}) {
        EXPECT_EQ(busyOf(text), std::nullopt) << text;
    }
}

TEST_F(AmdgpuSourceTest, TheNameIsThatOfTheProduct) {
    EXPECT_EQ(source.modelName(), "");
    tree.write("device/product_name", "\n");
    EXPECT_EQ(source.modelName(), "");
    tree.write("device/product_name", "AMD Radeon RX 7900 XTX \n");
    EXPECT_EQ(source.modelName(), "AMD Radeon RX 7900 XTX");
}

TEST_F(AmdgpuSourceTest, TheCoresAreTheComputeUnitsOfItsNode) {
    EXPECT_EQ(source.coreCount(), std::nullopt);
    setNode(0, "simd_count 0\nsimd_per_cu 0\nlocation_id 2816\ndomain 0\n");
    setNode(1, "simd_count 80\nsimd_per_cu 2\nlocation_id 768\ndomain 0\n");
    setNode(2, "simd_count 80\nsimd_per_cu 2\nlocation_id 2816\ndomain 1\n");
    EXPECT_EQ(source.coreCount(), std::nullopt);
    setNode(3, "simd_count 192\nsimd_per_cu 2\nlocation_id 2816\ndomain 0\n");
    EXPECT_EQ(source.coreCount(), 96);
    setNode(3, "simd_count 192\nsimd_per_cu 0\nlocation_id 2816\ndomain 0\n");
    EXPECT_EQ(source.coreCount(), std::nullopt);
}

TEST_F(AmdgpuSourceTest, KernelsWithoutDomainsHaveOne) {
    setNode(1, "simd_count 16\nsimd_per_cu 2\nlocation_id 2816\n");
    EXPECT_EQ(source.coreCount(), 8);
}

TEST_F(AmdgpuSourceTest, ADeviceThatIsOnNoBusHasNoCores) {
    setNode(1, "simd_count 16\nsimd_per_cu 2\nlocation_id 0\ndomain 0\n");
    EXPECT_EQ(AmdgpuSource(tree.root(), tree.root() + "/device", "").coreCount(), std::nullopt);
}

class IntelSourceTest : public ::testing::Test {
 protected:
    /// A source over what the tree holds now.
    IntelSource source() const { return IntelSource(tree.root() + "/card"); }
    void set(std::string_view file, std::string_view milliseconds) {
        tree.write("card/" + std::string(file), std::string(milliseconds) + "\n");
    }

    static constexpr std::string_view firstGroup = "gt/gt0/rc6_residency_ms";
    static constexpr std::string_view mediaGroup = "gt/gt1/rc6_residency_ms";

    const MachineTree tree;
};

TEST_F(IntelSourceTest, TheUtilizationIsTheTimeAwake) {
    set(firstGroup, "5000");
    IntelSource intel = source();
    EXPECT_TRUE(intel.isUsable());
    EXPECT_EQ(intel.read(100), std::nullopt);
    set(firstGroup, "6500");
    EXPECT_EQ(intel.read(102), (GpuUtilization{.device = 25, .renderer = 25}));
}

TEST_F(IntelSourceTest, TheMostAwakeGroupIsTheDeviceAndTheFirstTheRenderer) {
    set(firstGroup, "5000");
    set(mediaGroup, "7000");
    IntelSource intel = source();
    intel.read(100);
    set(firstGroup, "6500");
    set(mediaGroup, "7500");
    EXPECT_EQ(intel.read(102), (GpuUtilization{.device = 75, .renderer = 25}));
    set(firstGroup, "7000");
    set(mediaGroup, "9500");
    EXPECT_EQ(intel.read(104), (GpuUtilization{.device = 75, .renderer = 75}));
}

TEST_F(IntelSourceTest, AGroupThatCannotBeReadIsLeftOut) {
    set(firstGroup, "5000");
    set(mediaGroup, "7000");
    IntelSource intel = source();
    intel.read(100);
    set(firstGroup, "soon");
    set(mediaGroup, "8000");
    EXPECT_EQ(intel.read(102), (GpuUtilization{.device = 50, .renderer = std::nullopt}));
    // What happened while it could not be read is unknown.
    set(firstGroup, "9000");
    set(mediaGroup, "9000");
    EXPECT_EQ(intel.read(104), (GpuUtilization{.device = 50, .renderer = std::nullopt}));
}

TEST_F(IntelSourceTest, OldKernelsHaveTheCounterAtTheCard) {
    set("power/rc6_residency_ms", "5000");
    IntelSource intel = source();
    intel.read(100);
    set("power/rc6_residency_ms", "6500");
    EXPECT_EQ(intel.read(102), (GpuUtilization{.device = 25, .renderer = 25}));
}

TEST_F(IntelSourceTest, TheCounterAtTheCardIsNotCountedTwice) {
    set("power/rc6_residency_ms", "5000");
    set(firstGroup, "5000");
    IntelSource intel = source();
    intel.read(100);
    set("power/rc6_residency_ms", "5000");
    set(firstGroup, "7000");
    EXPECT_EQ(intel.read(102), (GpuUtilization{.device = 0, .renderer = 0}));
}

TEST_F(IntelSourceTest, TheXeDriverHasItsCountersInTiles) {
    set("device/tile0/gt0/gtidle/idle_residency_ms", "5000");
    set("device/tile0/gt1/gtidle/idle_residency_ms", "5000");
    set("device/tile1/gt2/gtidle/idle_residency_ms", "5000");
    IntelSource intel = source();
    intel.read(100);
    set("device/tile0/gt0/gtidle/idle_residency_ms", "6500");
    set("device/tile0/gt1/gtidle/idle_residency_ms", "7000");
    set("device/tile1/gt2/gtidle/idle_residency_ms", "5500");
    EXPECT_EQ(intel.read(102), (GpuUtilization{.device = 75, .renderer = 25}));
}

TEST_F(IntelSourceTest, EnginesThatMayNotSleepSayNothing) {
    set(firstGroup, "5000");
    set("gt/gt0/rc6_enable", "0");
    EXPECT_FALSE(source().isUsable());
    set("gt/gt0/rc6_enable", "1");
    EXPECT_TRUE(source().isUsable());
    tree.remove("card/gt");
    set("power/rc6_residency_ms", "5000");
    set("power/rc6_enable", "0");
    EXPECT_FALSE(source().isUsable());
}

TEST_F(IntelSourceTest, WithoutCountersThereIsNothing) {
    IntelSource intel = source();
    EXPECT_FALSE(intel.isUsable());
    EXPECT_EQ(intel.read(100), std::nullopt);
    EXPECT_EQ(intel.read(102), std::nullopt);
}

TEST_F(IntelSourceTest, SleepIsForgotten) {
    set(firstGroup, "5000");
    IntelSource intel = source();
    intel.read(100);
    intel.forget();
    set(firstGroup, "6000");
    EXPECT_EQ(intel.read(102), std::nullopt);
    set(firstGroup, "7000");
    EXPECT_EQ(intel.read(104)->device, 50);
}

TEST_F(IntelSourceTest, RestIsNotForgotten) {
    set(firstGroup, "5000");
    IntelSource intel = source();
    intel.read(100);
    intel.rest();
    set(firstGroup, "14000");
    EXPECT_EQ(intel.read(112)->device, 25);
}

TEST_F(IntelSourceTest, TruncatedCountersNeverAddWork) {
    set(firstGroup, "123456");
    IntelSource intel = source();
    intel.read(100);
    double now = 100;
    for (const std::string_view text : {"", "1", "12", "123", "1234", "12345", "123456"}) {
        tree.write("card/" + std::string(firstGroup), text);
        now += 2;
        EXPECT_EQ(intel.read(now), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace tarnwick::platform
