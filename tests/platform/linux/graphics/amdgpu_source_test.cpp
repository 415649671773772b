// SPDX-License-Identifier: MIT
// Cards of the amdgpu driver.
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/graphics/gpu_source.h"
#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using testing::MachineTree;
using testing::recordedFile;

class AmdgpuSourceTest : public ::testing::Test {
 protected:
    std::optional<double> busyOf(std::string_view text) {
        tree.write("device/gpu_busy_percent", text);
        const auto utilization = source->read(0);
        return utilization ? std::optional(utilization->device) : std::nullopt;
    }
    void setNode(int node, std::string_view properties) {
        tree.write("sys/class/kfd/kfd/topology/nodes/" + std::to_string(node) + "/properties",
                   properties);
    }

    std::unique_ptr<GpuSource> sourceAt(std::string slot) const {
        return makeAmdgpuSource(tree.root(), {.folder = tree.root() + "/device",
                                              .identity = {.slot = std::move(slot)}});
    }

    const MachineTree tree;
    const std::unique_ptr<GpuSource> source = sourceAt("0000:0b:00.0");
};

TEST_F(AmdgpuSourceTest, TheUtilizationIsTheFirmwaresOwn) {
    EXPECT_EQ(source->read(0), std::nullopt);
    EXPECT_EQ(busyOf("0\n"), 0);
    EXPECT_EQ(busyOf("37\n"), 37);
    EXPECT_EQ(busyOf("100\n"), 100);
    EXPECT_EQ(source->read(0)->renderer, std::nullopt);
}

TEST_F(AmdgpuSourceTest, WhatIsNoPercentageIsAbsent) {
    for (const std::string_view text :
         {"", "121\n", "65535\n", "4294967295\n", "-1\n", "busy\n", "37"}) {
        EXPECT_EQ(busyOf(text), std::nullopt) << text;
    }
}

TEST_F(AmdgpuSourceTest, FirmwareThatOvershootsIsFullyBusy) {
    EXPECT_EQ(busyOf("101\n"), 100);
    EXPECT_EQ(busyOf("120\n"), 100);
}

TEST_F(AmdgpuSourceTest, TheAverageGoesBeforeTheMoment) {
    EXPECT_EQ(busyOf("100\n"), 100);
    constexpr std::string_view file = "sys/class/drm/card0/device/gpu_metrics";
    tree.write("device/gpu_metrics", recordedFile("graphics/amdgpu-average", file));
    EXPECT_EQ(busyOf("100\n"), 42);
    tree.write("device/gpu_metrics", recordedFile("graphics/amdgpu-spikes", file));
    EXPECT_EQ(busyOf("7\n"), 7);
}

TEST_F(AmdgpuSourceTest, TheNameIsThatOfTheProduct) {
    EXPECT_EQ(source->modelName(), "");
    tree.write("device/product_name", "\n");
    EXPECT_EQ(source->modelName(), "");
    tree.write("device/product_name", "AMD Radeon RX 7900 XTX \n");
    EXPECT_EQ(source->modelName(), "AMD Radeon RX 7900 XTX");
}

TEST_F(AmdgpuSourceTest, TheCoresAreTheComputeUnitsOfItsNode) {
    EXPECT_EQ(source->coreCount(), std::nullopt);
    setNode(0, "simd_count 0\nsimd_per_cu 0\nlocation_id 2816\ndomain 0\n");
    setNode(1, "simd_count 80\nsimd_per_cu 2\nlocation_id 768\ndomain 0\n");
    setNode(2, "simd_count 80\nsimd_per_cu 2\nlocation_id 2816\ndomain 1\n");
    EXPECT_EQ(source->coreCount(), std::nullopt);
    setNode(3, "simd_count 192\nsimd_per_cu 2\nlocation_id 2816\ndomain 0\n");
    EXPECT_EQ(source->coreCount(), 96);
    setNode(3, "simd_count 192\nsimd_per_cu 0\nlocation_id 2816\ndomain 0\n");
    EXPECT_EQ(source->coreCount(), std::nullopt);
}

TEST_F(AmdgpuSourceTest, KernelsWithoutDomainsHaveOne) {
    setNode(1, "simd_count 16\nsimd_per_cu 2\nlocation_id 2816\n");
    EXPECT_EQ(source->coreCount(), 8);
}

TEST_F(AmdgpuSourceTest, ADeviceThatIsOnNoBusHasNoCores) {
    setNode(1, "simd_count 16\nsimd_per_cu 2\nlocation_id 0\ndomain 0\n");
    EXPECT_EQ(sourceAt("")->coreCount(), std::nullopt);
}

}  // namespace
}  // namespace tarnwick::platform
