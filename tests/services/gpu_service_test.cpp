// SPDX-License-Identifier: MIT
#include "services/gpu_service.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "platform/testing/recording_log.h"
#include "platform/testing/scripted_accelerators.h"

namespace tarnwick {
namespace {

using platform::LogLevel;
using platform::PropertyDictionary;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

/// An accelerator with statistics; `tag` is its core count, by which a test tells it apart.
PropertyDictionary accelerator(int tag, double device, double renderer, std::string model = "",
                               double tiler = 0) {
    return {{"PerformanceStatistics", PropertyDictionary{{"Device Utilization %", device},
                                                         {"Renderer Utilization %", renderer},
                                                         {"Tiler Utilization %", tiler}}},
            {"model", std::move(model)},
            {"gpu-core-count", std::int64_t{tag}}};
}

class GPUServiceTest : public testing::Test {
 protected:
    GPUInfo read(std::vector<PropertyDictionary> services) {
        accelerators.answers.matchingServices.set({.services = std::move(services)});
        return service.readGPUInfo();
    }
    /// The tag of the accelerator that was chosen.
    std::int64_t chosen(std::vector<PropertyDictionary> services) {
        return read(std::move(services)).coreCount;
    }
    static void expectUnavailable(const GPUInfo& info) {
        EXPECT_EQ(info.usagePercentage, 0);
        EXPECT_EQ(info.rendererUtilizationPercentage, 0);
        EXPECT_EQ(info.tilerUtilizationPercentage, 0);
        EXPECT_EQ(info.modelName, "");
        EXPECT_EQ(info.coreCount, 0);
        EXPECT_FALSE(info.isAvailable);
    }

    platform::testing::ScriptedAccelerators accelerators;
    platform::testing::RecordingLog log;
    GPUService service{accelerators, platform::Logger(log)};
};

TEST_F(GPUServiceTest, WithoutAcceleratorsTheRecordIsUnavailable) {
    expectUnavailable(read({}));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(GPUServiceTest, AFailureIsLoggedAndTheRecordIsUnavailable) {
    accelerators.answers.matchingServices.set(
        {.result = -536870206, .services = {accelerator(1, 50, 50)}});
    expectUnavailable(service.readGPUInfo());
    EXPECT_THAT(log.lines(),
                ElementsAre(Pair(
                    LogLevel::error,
                    "IOServiceGetMatchingServices(IOAccelerator) failed with result: -536870206")));
}

TEST_F(GPUServiceTest, EveryCodeButZeroIsAFailure) {
    accelerators.answers.matchingServices.set({.result = 5, .services = {accelerator(1, 50, 50)}});
    expectUnavailable(service.readGPUInfo());
    EXPECT_THAT(log.lines(),
                ElementsAre(Pair(LogLevel::error,
                                 "IOServiceGetMatchingServices(IOAccelerator) failed with "
                                 "result: 5")));
}

TEST_F(GPUServiceTest, OneAcceleratorIsTakenAsItIs) {
    const GPUInfo info = read({accelerator(10, 50, 40, "Graphics", 30)});
    EXPECT_EQ(info.usagePercentage, 50);
    EXPECT_EQ(info.rendererUtilizationPercentage, 40);
    EXPECT_EQ(info.tilerUtilizationPercentage, 30);
    EXPECT_EQ(info.modelName, "Graphics");
    EXPECT_EQ(info.coreCount, 10);
    EXPECT_TRUE(info.isAvailable);
}

TEST_F(GPUServiceTest, AnAcceleratorWithoutStatisticsIsPassedOver) {
    const PropertyDictionary asleep = {{"model", std::string("Asleep")},
                                       {"gpu-core-count", std::int64_t{7}}};
    expectUnavailable(read({asleep}));
    EXPECT_EQ(chosen({asleep, accelerator(2, 0, 0)}), 2);
    EXPECT_EQ(chosen({accelerator(1, 0, 0), asleep}), 1);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(GPUServiceTest, TheBusiestWins) {
    EXPECT_EQ(chosen({accelerator(1, 20, 90), accelerator(2, 50, 10), accelerator(3, 30, 95)}), 2);
    EXPECT_EQ(chosen({accelerator(1, 20, 20, "Named"), accelerator(2, 21, 0)}), 2);
}

TEST_F(GPUServiceTest, OfEquallyBusyOnesTheBusierRendererWins) {
    EXPECT_EQ(chosen({accelerator(1, 50, 10, "Named"), accelerator(2, 50, 40)}), 2);
    EXPECT_EQ(chosen({accelerator(1, 50, 40), accelerator(2, 50, 10, "Named")}), 1);
}

TEST_F(GPUServiceTest, OfEqualOnesTheFirstStaysUnlessOnlyTheOtherHasAName) {
    EXPECT_EQ(chosen({accelerator(1, 50, 40), accelerator(2, 50, 40)}), 1);
    EXPECT_EQ(chosen({accelerator(1, 50, 40), accelerator(2, 50, 40, "B")}), 2);
    EXPECT_EQ(chosen({accelerator(1, 50, 40, "A"), accelerator(2, 50, 40)}), 1);
    EXPECT_EQ(chosen({accelerator(1, 50, 40, "A"), accelerator(2, 50, 40, "B")}), 1);
    EXPECT_EQ(
        chosen({accelerator(1, 50, 40), accelerator(2, 50, 40, "B"), accelerator(3, 50, 40, "C")}),
        2);
}

TEST_F(GPUServiceTest, TheTilerDoesNotCount) {
    EXPECT_EQ(chosen({accelerator(1, 50, 40, "", 0), accelerator(2, 50, 40, "", 90)}), 1);
}

TEST_F(GPUServiceTest, FiguresAreComparedAfterClamping) {
    EXPECT_EQ(chosen({accelerator(1, 120, 40), accelerator(2, 140, 40)}), 1);
    EXPECT_EQ(chosen({accelerator(1, -10, -10), accelerator(2, 0, 0)}), 1);
}

TEST_F(GPUServiceTest, EveryCallAsksAnew) {
    EXPECT_EQ(read({accelerator(1, 50, 40)}).usagePercentage, 50);
    EXPECT_EQ(read({accelerator(1, 10, 40)}).usagePercentage, 10);
    expectUnavailable(read({}));
    EXPECT_THAT(accelerators.calls(),
                ElementsAre("matchingServices", "matchingServices", "matchingServices"));
}

}  // namespace
}  // namespace tarnwick
