// SPDX-License-Identifier: MIT
// Cards whose drivers tell how long the engines worked.
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/graphics/gpu_source.h"
#include "tests/platform/linux/files/opened_files.h"
#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

/// A card that is awake for the share that the test says, with a compositor and a browser.
class EngineTimeSourceTest : public ::testing::Test {
 protected:
    EngineTimeSourceTest() {
        tree.makeFolder("device/drm/card1");
        tree.makeFolder("device/drm/renderD128");
        tree.link("proc/10/fd/3", "/dev/dri/card1");
        tree.link("proc/20/fd/3", "/dev/dri/renderD128");
        setWork(10, "render", 0);
        setWork(20, "render", 0);
        sleep(0);
        source = makeEngineTimeSource(tree.root(), {.folder = tree.root() + "/device",
                                                    .card = tree.root() + "/card",
                                                    .identity = {.driver = "i915"}});
    }

    /// Milliseconds of sleep in all.
    void sleep(std::uint64_t milliseconds, std::string_view counter = "gt/gt0/rc6_residency_ms") {
        tree.write("card/" + std::string(counter), std::to_string(5000 + milliseconds) + "\n");
    }
    void setWork(int process, std::string_view engine, std::uint64_t milliseconds,
                 std::string_view more = "") {
        tree.write("proc/" + std::to_string(process) + "/fdinfo/3",
                   "drm-client-id:\t" + std::to_string(process) + "\ndrm-engine-" +
                       std::string(engine) + ":\t" + std::to_string(milliseconds) + "000000 ns\n" +
                       std::string(more));
    }
    void end(int process) {
        // What is kept open of a process that has ended holds nothing.
        tree.write("proc/" + std::to_string(process) + "/fdinfo/3", "");
        tree.remove("proc/" + std::to_string(process));
    }
    std::optional<double> useAt(double moment) {
        const auto utilization = source->read(moment);
        return utilization ? std::optional(utilization->device) : std::nullopt;
    }

    const testing::MachineTree tree;
    std::unique_ptr<GpuSource> source;
};

TEST_F(EngineTimeSourceTest, TheUseIsWhatAllClientsHadTheEnginesDo) {
    EXPECT_EQ(useAt(100), std::nullopt);
    setWork(10, "render", 300);
    setWork(20, "render", 200);
    EXPECT_EQ(source->read(102), (GpuUtilization{.device = 25, .renderer = 25}));
    setWork(10, "render", 310);
    EXPECT_EQ(useAt(104), 0.5);
    EXPECT_EQ(useAt(106), 0);
}

TEST_F(EngineTimeSourceTest, TheBusiestClassCounts) {
    setWork(20, "video", 0, "drm-engine-capacity-video:\t2\n");
    source->read(100);
    setWork(10, "render", 200);
    setWork(20, "video", 1000, "drm-engine-capacity-video:\t2\n");
    EXPECT_EQ(source->read(102), (GpuUtilization{.device = 25, .renderer = 10}));
}

TEST_F(EngineTimeSourceTest, ACardThatIsHardlyAwakeIsNotAsked) {
    source->read(100);
    testing::OpenedFiles opened;
    if (!opened.watch(tree.root(), "proc/10/fdinfo/3") || !opened.watch(tree.root(), "proc")) {
        GTEST_SKIP() << "this machine does not tell which files are opened";
    }
    for (int tick = 1; tick < 100; ++tick) {
        sleep(static_cast<std::uint64_t>(tick) * 1920);
        EXPECT_NEAR(useAt(100 + 2 * tick).value_or(-1), 4, 0.001);
    }
    EXPECT_FALSE(opened.any());
    EXPECT_NEAR(useAt(300).value_or(-1), 4, 0.001);
    EXPECT_TRUE(opened.any());
}

TEST_F(EngineTimeSourceTest, TheTimeAwakeIsNeverTheUseOfACardThatIsAwake) {
    useAt(100);
    for (int tick = 1; tick < 10; ++tick) {
        sleep(static_cast<std::uint64_t>(tick) * 1880);
        EXPECT_EQ(useAt(100 + 2 * tick), 0) << "awake for 6 %";
    }
}

TEST_F(EngineTimeSourceTest, TheLastFigureStandsWhileTheFirstSampleIsTaken) {
    useAt(100);
    sleep(1960);
    EXPECT_NEAR(useAt(102).value_or(-1), 2, 0.001);
    setWork(10, "render", 9000);
    EXPECT_NEAR(useAt(104).value_or(-1), 2, 0.001);
    setWork(10, "render", 10800);
    EXPECT_EQ(useAt(106), 90);
}

TEST_F(EngineTimeSourceTest, TheMostAwakeGroupCounts) {
    sleep(0, "gt/gt1/rc6_residency_ms");
    useAt(100);
    sleep(2000);
    sleep(1000, "gt/gt1/rc6_residency_ms");
    setWork(10, "render", 20);
    EXPECT_EQ(useAt(102), 1);
    sleep(4000);
    sleep(2940, "gt/gt1/rc6_residency_ms");
    EXPECT_NEAR(useAt(104).value_or(-1), 3, 0.001);
}

TEST_F(EngineTimeSourceTest, ACounterThatCannotBeTrustedBoundsNothing) {
    useAt(100);
    const auto isAsked = [this](double moment, std::uint64_t work) {
        setWork(10, "render", work);
        return useAt(moment) == 50;
    };
    tree.write("card/gt/gt0/rc6_residency_ms", "soon\n");
    EXPECT_TRUE(isAsked(102, 1000));
    sleep(4000);
    EXPECT_TRUE(isAsked(104, 2000)) << "the first after a gap";
    sleep(9000);
    EXPECT_TRUE(isAsked(106, 3000)) << "far ahead of the clock";
    sleep(1000);
    EXPECT_TRUE(isAsked(108, 4000)) << "went back";
    EXPECT_TRUE(isAsked(110, 5000)) << "stands still";
    sleep(3030);
    EXPECT_EQ(useAt(112), 0) << "a little ahead of the clock";
}

TEST_F(EngineTimeSourceTest, OldKernelsHaveTheCounterAtTheCard) {
    tree.remove("card/gt");
    sleep(0, "power/rc6_residency_ms");
    useAt(100);
    sleep(1960, "power/rc6_residency_ms");
    EXPECT_NEAR(useAt(102).value_or(-1), 2, 0.001);
}

TEST_F(EngineTimeSourceTest, CountersThatAppearLaterAreFound) {
    tree.remove("card/gt");
    useAt(100);
    sleep(0);
    EXPECT_EQ(useAt(160), 0);
    sleep(1960);
    EXPECT_NEAR(useAt(162).value_or(-1), 2, 0.001);
}

TEST_F(EngineTimeSourceTest, WithoutClientsTheUseIsUnknown) {
    end(10);
    end(20);
    EXPECT_EQ(useAt(100), std::nullopt);
    EXPECT_EQ(useAt(102), std::nullopt);
    // It stays so while the card rests, so that the figure does not come and go.
    sleep(2000);
    EXPECT_EQ(useAt(104), std::nullopt);
}

TEST_F(EngineTimeSourceTest, WithoutTheClientThatDrivesTheScreenTheUseIsUnknown) {
    end(10);
    useAt(100);
    setWork(20, "render", 200);
    EXPECT_EQ(useAt(102), 10) << "drives no screen";
    tree.write("card-eDP-1/enabled", "enabled\n");
    tree.write("card-eDP-1/dpms", "On\n");
    EXPECT_EQ(useAt(104), std::nullopt);
}

TEST_F(EngineTimeSourceTest, AClientThatHasGoneTakesItsTimeAlong) {
    setWork(20, "render", 60'000);
    useAt(100);
    setWork(10, "render", 200);
    end(20);
    EXPECT_EQ(useAt(102), 10);
}

TEST_F(EngineTimeSourceTest, AClientThatIsNewCountsFromItsFirstSampleOn) {
    useAt(100);
    tree.link("proc/30/fd/3", "/dev/dri/renderD128");
    setWork(30, "render", 60'000);
    setWork(10, "render", 2000);
    EXPECT_EQ(useAt(110), 20);
    setWork(30, "render", 61'000);
    EXPECT_EQ(useAt(112), 50);
}

TEST_F(EngineTimeSourceTest, TimesThatDoNotFitTheClockAreNoFigure) {
    useAt(100);
    setWork(10, "render", 2200);
    EXPECT_EQ(useAt(102), 100);
    setWork(10, "render", 9200);
    EXPECT_EQ(useAt(104), std::nullopt);
    setWork(10, "render", 200);
    EXPECT_EQ(useAt(106), 0);
    setWork(10, "render", 400);
    EXPECT_EQ(useAt(108), 10);
}

TEST_F(EngineTimeSourceTest, QuestionsThatFollowTooCloselyRepeatTheAnswer) {
    useAt(100);
    setWork(10, "render", 200);
    EXPECT_EQ(useAt(102), 10);
    setWork(10, "render", 300);
    EXPECT_EQ(useAt(102), 10);
    EXPECT_EQ(useAt(102.1), 10);
    EXPECT_EQ(useAt(104), 5);
}

TEST_F(EngineTimeSourceTest, SleepIsForgotten) {
    useAt(100);
    source->forget();
    setWork(10, "render", 200);
    EXPECT_EQ(useAt(102), std::nullopt);
    setWork(10, "render", 400);
    EXPECT_EQ(useAt(104), 10);
}

TEST_F(EngineTimeSourceTest, ACardWithQueuesOfItsOwnNeedsNoSearch) {
    constexpr std::string_view file = "device/gpu_stats";
    tree.write(file, "queue\ttimestamp\tjobs\truntime\nrender\t4000\t1\t100\nbin\t4000\t1\t100\n");
    testing::OpenedFiles opened;
    if (!opened.watch(tree.root(), "proc")) {
        GTEST_SKIP() << "this machine does not tell which files are opened";
    }
    EXPECT_EQ(useAt(100), std::nullopt);
    tree.write(file, "queue\ttimestamp\tjobs\truntime\nrender\t4200\t1\t150\nbin\t4200\t1\t120\n");
    EXPECT_EQ(source->read(102), (GpuUtilization{.device = 25, .renderer = 25}));
    EXPECT_FALSE(opened.any());
}

}  // namespace
}  // namespace tarnwick::platform
