// SPDX-License-Identifier: MIT
#include "platform/linux/graphics/nvml.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/graphics/gpu_source.h"
#include "tests/platform/linux/graphics/loaded_test_nvml.h"

namespace tarnwick::platform {
namespace {

constexpr const char* slot = "0000:01:00.0";
constexpr int notSupported = 3;

class NvmlTest : public ::testing::Test {
 protected:
    const testing::LoadedTestNvml library;
    Nvml nvml{TARNWICK_TEST_NVML};
};

TEST_F(NvmlTest, TellsUtilizationNameAndCores) {
    library->utilization = 42;
    library->name = "NVIDIA Test Card";
    library->coreCount = 16896;
    const auto session = nvml.open(slot);
    ASSERT_TRUE(session);
    EXPECT_EQ(session->utilization(), 42);
    EXPECT_EQ(session->name(), "NVIDIA Test Card");
    EXPECT_EQ(session->coreCount(), 16896);
}

TEST_F(NvmlTest, NothingIsLoadedOrConnectedBeforeACardIsOpened) {
    EXPECT_EQ(library->initialized, 0);
    EXPECT_EQ(nvml.open("0000:99:00.0"), nullptr);
    EXPECT_EQ(library->initialized, 1);
    EXPECT_EQ(library->connections(), 0);
}

TEST_F(NvmlTest, TheConnectionEndsWithTheLastSession) {
    auto first = nvml.open(slot);
    auto second = nvml.open(slot);
    EXPECT_EQ(nvml.open("0000:99:00.0"), nullptr);
    EXPECT_EQ(library->initialized, 1);
    first.reset();
    EXPECT_EQ(library->connections(), 1);
    EXPECT_TRUE(second->utilization());
    second.reset();
    EXPECT_EQ(library->connections(), 0);
    EXPECT_TRUE(nvml.open(slot));
    EXPECT_EQ(library->initialized, 2);
    EXPECT_EQ(library->connections(), 0);
}

TEST_F(NvmlTest, ADriverThatDoesNotAnswerGivesNoSession) {
    library->initializeResult = 9;
    EXPECT_EQ(nvml.open(slot), nullptr);
    EXPECT_EQ(library->devicesAsked, 0);
    EXPECT_EQ(library->shutDown, 0);
}

TEST_F(NvmlTest, EveryQuestionMayFailByItself) {
    library->name = "NVIDIA Test Card";
    const auto session = nvml.open(slot);
    ASSERT_TRUE(session);
    library->utilizationResult = notSupported;
    library->nameResult = notSupported;
    library->coreCountResult = notSupported;
    EXPECT_EQ(session->utilization(), std::nullopt);
    EXPECT_EQ(session->name(), "");
    EXPECT_EQ(session->coreCount(), std::nullopt);
}

TEST_F(NvmlTest, WhatIsNoPercentageIsAbsent) {
    library->utilization = 100;
    const auto session = nvml.open(slot);
    ASSERT_TRUE(session);
    EXPECT_EQ(session->utilization(), 100);
    library->utilization = 101;
    EXPECT_EQ(session->utilization(), std::nullopt);
}

TEST_F(NvmlTest, ANameWithoutEndStaysWithinItsRoom) {
    const std::string endless(500, 'n');
    library->name = endless.c_str();
    const auto session = nvml.open(slot);
    ASSERT_TRUE(session);
    EXPECT_EQ(session->name(), std::string(95, 'n'));
}

TEST_F(NvmlTest, AnyThreadMayAsk) {
    library->utilization = 42;
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([this] {
            for (int reading = 0; reading < 2000; ++reading) {
                const auto session = nvml.open(slot);
                ASSERT_TRUE(session);
                ASSERT_EQ(session->utilization(), 42);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(library->connections(), 0);
}

TEST(NvmlLibrary, MayBeMissing) {
    EXPECT_EQ(Nvml("").open(slot), nullptr);
    EXPECT_EQ(Nvml("libno-such-management-library.so.1").open(slot), nullptr);
    EXPECT_EQ(Nvml("/dev/null").open(slot), nullptr);
}

TEST(NvmlLibrary, WithoutAFunctionThatIsNeededIsNotUsed) {
    EXPECT_EQ(Nvml(TARNWICK_TEST_NVML_WITHOUT_SHUTDOWN).open(slot), nullptr);
}

TEST(NvmlLibrary, OfAnOldDriverTellsTheUtilizationOnly) {
    Nvml nvml(TARNWICK_TEST_NVML_OLD);
    const auto session = nvml.open(slot);
    ASSERT_TRUE(session);
    EXPECT_EQ(session->utilization(), 0);
    EXPECT_EQ(session->name(), "");
    EXPECT_EQ(session->coreCount(), std::nullopt);
}

class NvidiaSourceTest : public NvmlTest {
 protected:
    const std::unique_ptr<GpuSource> source = makeNvidiaSource(nvml, slot);
};

TEST_F(NvidiaSourceTest, OneConnectionServesManyReadings) {
    library->utilization = 7;
    EXPECT_EQ(source->read(10), GpuUtilization{.device = 7});
    library->utilization = 70;
    EXPECT_EQ(source->read(12), GpuUtilization{.device = 70});
    EXPECT_EQ(library->initialized, 1);
    EXPECT_EQ(library->devicesAsked, 1);
}

TEST_F(NvidiaSourceTest, AfterAFailureTheConnectionEndsAndAMinutePasses) {
    EXPECT_TRUE(source->read(10));
    library->utilizationResult = notSupported;
    EXPECT_EQ(source->read(12), std::nullopt);
    EXPECT_EQ(library->connections(), 0);
    library->utilizationResult = 0;
    EXPECT_EQ(source->read(71), std::nullopt);
    EXPECT_EQ(library->initialized, 1);
    EXPECT_TRUE(source->read(72));
    EXPECT_TRUE(source->read(73));
    EXPECT_EQ(library->initialized, 2);
}

TEST_F(NvidiaSourceTest, RestEndsTheConnection) {
    library->name = "NVIDIA Test Card";
    EXPECT_TRUE(source->read(10));
    EXPECT_EQ(source->modelName(), "NVIDIA Test Card");
    EXPECT_EQ(source->coreCount(), 0);
    source->rest();
    EXPECT_EQ(library->connections(), 0);
    EXPECT_EQ(source->modelName(), "");
    EXPECT_EQ(source->coreCount(), std::nullopt);
    EXPECT_TRUE(source->read(12));
    source->forget();
    EXPECT_EQ(library->connections(), 0);
}

}  // namespace
}  // namespace tarnwick::platform
