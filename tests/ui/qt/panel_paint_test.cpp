// SPDX-License-Identifier: MIT
// What of a page is painted when some of its figures change.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>

#include "tests/ui/qt/paint_counter.h"
#include "tests/ui/qt/panel_view_fixture.h"

namespace tarnwick::qt {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

class PanelPaintTest : public PanelViewTest {
 protected:
    /// Follows one page with another: the blocks named, once each, are all that is painted, and the
    /// ground below them.
    template <class Inputs>
    void expectPainted(const Inputs& before, const Inputs& after,
                       const std::set<std::string>& blocks) {
        show(before);
        PaintCounter counter;
        show(after);
        std::map<std::string, int> expected{{"view", 1}};
        QRegion ground;
        for (const std::string& id : blocks) {
            expected[id] = 1;
            ground += find(id.c_str())->geometry();
        }
        EXPECT_EQ(counter.paints, expected);
        EXPECT_EQ(counter.regions["view"], ground);
    }

    PerformanceDetailInputs performance = testing::performanceDetailStates().front().inputs;
    MemoryDetailInputs memory = testing::memoryDetailStates()[1].inputs;
};

TEST_F(PanelPaintTest, OnThePerformancePageOnlyWhatChanged) {
    const struct {
        std::set<std::string> blocks;
        void (*apply)(PerformanceDetailInputs&);
    } changes[] = {
        {{"trend.cpu"}, [](auto& in) { in.cpuInfo.usagePercentage = 50; }},
        {{"trend.cpu"}, [](auto& in) { in.cpuUsageHistory.back().value = 99; }},
        {{"trend.gpu", "gpu.device"}, [](auto& in) { in.gpuInfo.usagePercentage = 50; }},
        {{"trend.memory"}, [](auto& in) { in.memoryInfo.used = in.memoryInfo.total / 4; }},
        {{"trend.storage"}, [](auto& in) { in.storageUsageHistory.clear(); }},
        {{"trend.cpu", "trend.memory"},
         [](auto& in) {
             in.cpuUsageHistory.back().value = 99;
             in.memoryUsageHistory.back().value = 99;
         }},
        {{"gpu"}, [](auto& in) { in.gpuInfo.modelName = "another"; }},
        {{"gpu.renderer"}, [](auto& in) { in.gpuInfo.rendererUtilizationPercentage = 50; }},
        {{"gpu.tiler"}, [](auto& in) { in.gpuInfo.tilerUtilizationPercentage = 50; }},
        {{"network.download", "network.total"},
         [](auto& in) { in.networkInfo.downloadBytesPerSecond = 5e6; }},
        {{"network.upload", "network.total"},
         [](auto& in) { in.networkInfo.uploadBytesPerSecond = 5e6; }},
        {{"thermal"}, [](auto& in) { in.thermalState = 3; }}};
    for (const auto& change : changes) {
        SCOPED_TRACE(*change.blocks.begin());
        PerformanceDetailInputs after = performance;
        change.apply(after);
        expectPainted(performance, after, change.blocks);
    }
}

TEST_F(PanelPaintTest, OnTheMemoryPageOnlyWhatChanged) {
    const struct {
        std::set<std::string> blocks;
        void (*apply)(MemoryInfo&);
    } changes[] = {
        {{"breakdown.used"}, [](auto& in) { in.used = 1; }},
        {{"breakdown.cached"}, [](auto& in) { in.cached += 1 << 30; }},
        {{"breakdown.swap"}, [](auto& in) { in.swapUsed = 1; }},
        {{"breakdown.app"}, [](auto& in) { in.app = 1; }},
        {{"breakdown.wired"}, [](auto& in) { in.wired = 1; }},
        {{"breakdown.compressed"}, [](auto& in) { in.compressed = 1; }},
        {{"breakdown.compressed", "pressure"}, [](auto& in) { in.compressed = in.total / 5; }}};
    for (const auto& change : changes) {
        SCOPED_TRACE(*change.blocks.begin());
        MemoryDetailInputs after = memory;
        change.apply(after.memoryInfo);
        expectPainted(memory, after, change.blocks);
    }
}

TEST_F(PanelPaintTest, OfAListOnlyTheRowThatChanged) {
    show(memory);
    PaintCounter counter;
    memory.topMemoryProcesses[1].memoryUsage *= 2;
    show(memory);
    EXPECT_THAT(counter.paints, ElementsAre(Pair("tarnwick::qt::ListLine", 1),
                                            Pair("topMemory.list", 1), Pair("view", 1)));
    EXPECT_LT(counter.regions["view"].boundingRect().height(), 30);
}

}  // namespace
}  // namespace tarnwick::qt
