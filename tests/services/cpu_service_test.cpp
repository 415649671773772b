// SPDX-License-Identifier: MIT
#include "services/cpu_service.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <tuple>

#include "platform/testing/recording_log.h"
#include "platform/testing/scripted_kernel.h"

namespace tarnwick {
namespace {

using platform::HostProcessorInfo;
using platform::testing::processorTicks;
using testing::DoubleEq;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t kLargestCount = std::numeric_limits<std::uint32_t>::max();

class CPUServiceTest : public testing::Test {
 protected:
    CPUServiceTest() { kernel.answers.logicalCPUCount.set(2); }

    CPUInfo read(const HostProcessorInfo& answer) {
        kernel.answers.hostProcessorInfo.set(answer);
        return service.readCPUInfo();
    }

    static void expectIdle(const CPUInfo& info) {
        EXPECT_EQ(info.usagePercentage, 0);
        EXPECT_EQ(info.userPercentage, 0);
        EXPECT_EQ(info.systemPercentage, 0);
        EXPECT_EQ(info.idlePercentage, 100);
    }

    platform::testing::ScriptedKernel kernel;
    platform::testing::RecordingLog log;
    CPUService service{kernel, platform::Logger(log)};
};

TEST_F(CPUServiceTest, FirstCallReadsIdleWithAZeroForEachProcessor) {
    const CPUInfo info = read(processorTicks({{500, 300, 9000, 40}, {700, 100, 8000, 10}}));
    expectIdle(info);
    EXPECT_THAT(info.coreUsages, ElementsAre(0, 0));
    EXPECT_EQ(info.coreCount, 2);
}

TEST_F(CPUServiceTest, IdenticalCountersReadIdleWithAZeroForEachProcessor) {
    const auto ticks = processorTicks({{500, 300, 9000, 40}, {700, 100, 8000, 10}});
    read(ticks);
    const CPUInfo info = read(ticks);
    expectIdle(info);
    EXPECT_THAT(info.coreUsages, ElementsAre(0, 0));
}

TEST_F(CPUServiceTest, SharesAreThoseOfTheTicksSinceThePreviousCall) {
    read(processorTicks({{1000, 2000, 3000, 4000}}));
    const CPUInfo info = read(processorTicks({{1010, 2020, 3065, 4005}}));
    EXPECT_DOUBLE_EQ(info.userPercentage, 10);
    EXPECT_DOUBLE_EQ(info.systemPercentage, 20);
    EXPECT_DOUBLE_EQ(info.idlePercentage, 65);
    EXPECT_DOUBLE_EQ(info.usagePercentage, 35);
    EXPECT_THAT(info.coreUsages, ElementsAre(DoubleEq(35)));
}

TEST_F(CPUServiceTest, EachCallComparesWithTheOneBefore) {
    read(processorTicks({{0, 0, 0, 0}}));
    EXPECT_DOUBLE_EQ(read(processorTicks({{100, 0, 0, 0}})).usagePercentage, 100);
    EXPECT_DOUBLE_EQ(read(processorTicks({{100, 0, 100, 0}})).usagePercentage, 0);
    EXPECT_DOUBLE_EQ(read(processorTicks({{125, 0, 175, 0}})).usagePercentage, 25);
}

TEST_F(CPUServiceTest, CoreUsagesFollowTheOrderOfTheProcessors) {
    read(processorTicks({{0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}}));
    const CPUInfo info = read(processorTicks({{10, 0, 90, 0}, {0, 50, 50, 0}, {0, 0, 25, 75}}));
    EXPECT_THAT(info.coreUsages, ElementsAre(DoubleEq(10), DoubleEq(50), DoubleEq(75)));
}

TEST_F(CPUServiceTest, TheMachineIsTheSumOfTicksNotTheMeanOfProcessors) {
    read(processorTicks({{0, 0, 0, 0}, {0, 0, 0, 0}}));
    const CPUInfo info = read(processorTicks({{10, 0, 0, 0}, {0, 0, 30, 0}}));
    EXPECT_DOUBLE_EQ(info.usagePercentage, 25);
    EXPECT_DOUBLE_EQ(info.idlePercentage, 75);
}

TEST_F(CPUServiceTest, AProcessorWithoutTicksReadsZeroBesideABusyOne) {
    read(processorTicks({{5, 5, 5, 5}, {0, 0, 0, 0}}));
    const CPUInfo info = read(processorTicks({{5, 5, 5, 5}, {8, 0, 2, 0}}));
    EXPECT_THAT(info.coreUsages, ElementsAre(0, DoubleEq(80)));
    EXPECT_DOUBLE_EQ(info.usagePercentage, 80);
}

TEST_F(CPUServiceTest, AnIdleCounterThatWentBackwardsContributesNoIdleTicks) {
    read(processorTicks({{0, 0, 1000, 0}, {0, 0, 0, 0}}));
    const CPUInfo info = read(processorTicks({{50, 0, 900, 0}, {0, 0, 50, 0}}));
    EXPECT_THAT(info.coreUsages, ElementsAre(DoubleEq(100), 0));
    EXPECT_DOUBLE_EQ(info.usagePercentage, 50);
    EXPECT_DOUBLE_EQ(info.idlePercentage, 50);
}

TEST_F(CPUServiceTest, EachKindThatWentBackwardsContributesNothing) {
    for (std::size_t kind = 0; kind < 4; ++kind) {
        std::array<std::uint32_t, 4> before{100, 100, 100, 100};
        std::array<std::uint32_t, 4> after{110, 110, 110, 110};
        after[kind] = 90;
        read(processorTicks({before}));
        const CPUInfo info = read(processorTicks({after}));
        EXPECT_DOUBLE_EQ(info.userPercentage, kind == 0 ? 0 : 100.0 / 3) << kind;
        EXPECT_DOUBLE_EQ(info.systemPercentage, kind == 1 ? 0 : 100.0 / 3) << kind;
        EXPECT_DOUBLE_EQ(info.idlePercentage, kind == 2 ? 0 : 100.0 / 3) << kind;
        EXPECT_DOUBLE_EQ(info.usagePercentage, kind == 2 ? 100 : 200.0 / 3) << kind;
    }
}

TEST_F(CPUServiceTest, AProcessorWhoseEveryCounterWentBackwardsReadsZero) {
    read(processorTicks({{10, 20, 30, 40}, {0, 0, 0, 0}}));
    const CPUInfo info = read(processorTicks({{9, 19, 29, 39}, {1, 0, 3, 0}}));
    EXPECT_THAT(info.coreUsages, ElementsAre(0, DoubleEq(25)));
    EXPECT_DOUBLE_EQ(info.usagePercentage, 25);
}

TEST_F(CPUServiceTest, CountersThatWentBackwardsBecomeTheNextPrevious) {
    read(processorTicks({{1000, 0, 1000, 0}}));
    expectIdle(read(processorTicks({{0, 0, 0, 0}})));
    EXPECT_DOUBLE_EQ(read(processorTicks({{30, 0, 70, 0}})).usagePercentage, 30);
}

TEST_F(CPUServiceTest, ACounterThatWrappedContributesNothing) {
    read(processorTicks({{kLargestCount - 5, 0, 0, 0}}));
    const CPUInfo info = read(processorTicks({{20, 0, 60, 0}}));
    EXPECT_EQ(info.userPercentage, 0);
    EXPECT_DOUBLE_EQ(info.idlePercentage, 100);
    EXPECT_THAT(info.coreUsages, ElementsAre(0));
}

TEST_F(CPUServiceTest, TotalsGoBeyondThirtyTwoBits) {
    read(processorTicks({{0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}}));
    const CPUInfo info = read(processorTicks({{kLargestCount, 0, 0, 0},
                                              {kLargestCount, 0, kLargestCount, 0},
                                              {kLargestCount, kLargestCount, 0, kLargestCount}}));
    EXPECT_THAT(info.coreUsages, ElementsAre(DoubleEq(100), DoubleEq(50), DoubleEq(100)));
    EXPECT_DOUBLE_EQ(info.userPercentage, 50);
    EXPECT_DOUBLE_EQ(info.systemPercentage, 100.0 / 6);
    EXPECT_DOUBLE_EQ(info.idlePercentage, 100.0 / 6);
    EXPECT_DOUBLE_EQ(info.usagePercentage, 500.0 / 6);
}

TEST_F(CPUServiceTest, AnAddedProcessorReadsZeroAndAddsNothing) {
    read(processorTicks({{0, 0, 0, 0}}));
    const CPUInfo info = read(processorTicks({{25, 0, 75, 0}, {5000, 5000, 0, 0}}));
    EXPECT_THAT(info.coreUsages, ElementsAre(DoubleEq(25), 0));
    EXPECT_DOUBLE_EQ(info.usagePercentage, 25);

    const CPUInfo next = read(processorTicks({{25, 0, 75, 0}, {5010, 5000, 90, 0}}));
    EXPECT_THAT(next.coreUsages, ElementsAre(0, DoubleEq(10)));
}

TEST_F(CPUServiceTest, ARemovedProcessorIsForgotten) {
    read(processorTicks({{0, 0, 0, 0}, {0, 0, 0, 0}}));
    EXPECT_THAT(read(processorTicks({{50, 0, 50, 0}})).coreUsages, ElementsAre(DoubleEq(50)));
    const CPUInfo back = read(processorTicks({{50, 0, 50, 0}, {100, 0, 0, 0}}));
    expectIdle(back);
    EXPECT_THAT(back.coreUsages, ElementsAre(0, 0));
}

TEST_F(CPUServiceTest, NoProcessorsGiveAnIdleMachineWithoutCores) {
    read(processorTicks({{0, 0, 0, 0}}));
    const CPUInfo info = read(processorTicks({}));
    expectIdle(info);
    EXPECT_THAT(info.coreUsages, IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CPUServiceTest, NoProcessorsReplaceThePreviousTicks) {
    read(processorTicks({{0, 0, 0, 0}}));
    read(processorTicks({}));
    const CPUInfo info = read(processorTicks({{50, 0, 50, 0}}));
    expectIdle(info);
    EXPECT_THAT(info.coreUsages, ElementsAre(0));
}

TEST_F(CPUServiceTest, OnlyNiceTicksAreBusyWithoutUserOrSystemShare) {
    read(processorTicks({{1, 1, 1, 1}}));
    const CPUInfo info = read(processorTicks({{1, 1, 1, 51}}));
    EXPECT_EQ(info.usagePercentage, 100);
    EXPECT_EQ(info.userPercentage, 0);
    EXPECT_EQ(info.systemPercentage, 0);
    EXPECT_EQ(info.idlePercentage, 0);
    EXPECT_THAT(info.coreUsages, ElementsAre(100));
}

TEST_F(CPUServiceTest, NiceIsAddedToTheSumOfUserAndSystem) {
    read(processorTicks({{0, 0, 0, 0}}));
    const CPUInfo info = read(processorTicks({{1, 1, 7, 14}}));
    // Any other order of the additions differs in the last digits.
    EXPECT_EQ(info.usagePercentage, 14.0 / 23 * 100 + (1.0 / 23 * 100 + 1.0 / 23 * 100));
    ASSERT_NE(info.usagePercentage, 14.0 / 23 * 100 + 1.0 / 23 * 100 + 1.0 / 23 * 100);
}

TEST_F(CPUServiceTest, UsageIsClampedToAHundredWhereRoundingExceedsIt) {
    ASSERT_GT(9.0 / 11 * 100 + (1.0 / 11 * 100 + 1.0 / 11 * 100), 100);
    read(processorTicks({{0, 0, 0, 0}}));
    EXPECT_EQ(read(processorTicks({{1, 1, 0, 9}})).usagePercentage, 100);
}

TEST_F(CPUServiceTest, CoreCountComesFromItsOwnSource) {
    kernel.answers.logicalCPUCount.set(12);
    const CPUInfo info = read(processorTicks({{0, 0, 0, 0}, {0, 0, 0, 0}}));
    EXPECT_EQ(info.coreCount, 12);
    EXPECT_EQ(info.coreUsages.size(), 2U);
}

TEST_F(CPUServiceTest, CoreCountIsAskedForAtEveryCall) {
    read(processorTicks({{0, 0, 0, 0}}));
    kernel.answers.logicalCPUCount.set(3);
    EXPECT_EQ(read(processorTicks({{0, 0, 0, 0}})).coreCount, 3);
}

TEST_F(CPUServiceTest, CoreCountIsZeroWhenItsSourceFails) {
    kernel.answers.logicalCPUCount.set(std::nullopt);
    read(processorTicks({{0, 0, 0, 0}, {0, 0, 0, 0}}));
    const CPUInfo info = read(processorTicks({{40, 0, 60, 0}, {40, 0, 60, 0}}));
    EXPECT_EQ(info.coreCount, 0);
    EXPECT_DOUBLE_EQ(info.usagePercentage, 40);
    EXPECT_EQ(info.coreUsages.size(), 2U);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CPUServiceTest, AsksForTheCoreCountFirstAndForEachFigureOnce) {
    read(processorTicks({{0, 0, 0, 0}}));
    EXPECT_THAT(kernel.calls(), ElementsAre("logicalCPUCount", "hostProcessorInfo"));
}

TEST_F(CPUServiceTest, AFailedCallReadsIdleWithTheCoreCountAndNoCores) {
    read(processorTicks({{0, 0, 0, 0}}));
    const CPUInfo info = read({.result = 5});
    expectIdle(info);
    EXPECT_EQ(info.coreCount, 2);
    EXPECT_THAT(info.coreUsages, IsEmpty());
}

TEST_F(CPUServiceTest, AFailedCallIsLoggedWithItsCode) {
    read({.result = 5});
    read({.result = -308});
    EXPECT_THAT(
        log.lines(),
        ElementsAre(std::pair{platform::LogLevel::error,
                              std::string("host_processor_info failed with result: 5")},
                    std::pair{platform::LogLevel::error,
                              std::string("host_processor_info failed with result: -308")}));
}

TEST_F(CPUServiceTest, AFailedCallIsNotReadEvenIfItGaveWords) {
    HostProcessorInfo answer = processorTicks({{10, 10, 10, 10}});
    answer.result = 4;
    EXPECT_THAT(read(answer).coreUsages, IsEmpty());
    EXPECT_EQ(log.lines().size(), 1U);
}

TEST_F(CPUServiceTest, AFailedCallLeavesThePreviousTicksAlone) {
    read(processorTicks({{0, 0, 0, 0}}));
    read({.result = 5});
    EXPECT_DOUBLE_EQ(read(processorTicks({{30, 0, 70, 0}})).usagePercentage, 30);
}

TEST_F(CPUServiceTest, AMissingArrayReadsIdleAndIsLoggedWithCodeZero) {
    const CPUInfo info = read({.result = 0, .processorCount = 2});
    expectIdle(info);
    EXPECT_EQ(info.coreCount, 2);
    EXPECT_THAT(info.coreUsages, IsEmpty());
    EXPECT_THAT(log.lines(),
                ElementsAre(std::pair{platform::LogLevel::error,
                                      std::string("host_processor_info failed with result: 0")}));
}

TEST_F(CPUServiceTest, AMissingArrayLeavesThePreviousTicksAlone) {
    read(processorTicks({{0, 0, 0, 0}}));
    read({.result = 0, .processorCount = 1});
    EXPECT_DOUBLE_EQ(read(processorTicks({{30, 0, 70, 0}})).usagePercentage, 30);
}

TEST_F(CPUServiceTest, AnArrayOneWordTooShortReadsIdleWithoutAWord) {
    read(processorTicks({{0, 0, 0, 0}, {0, 0, 0, 0}}));
    HostProcessorInfo answer = processorTicks({{10, 0, 10, 0}, {10, 0, 10, 0}});
    answer.words->pop_back();
    const CPUInfo info = read(answer);
    expectIdle(info);
    EXPECT_EQ(info.coreCount, 2);
    EXPECT_THAT(info.coreUsages, IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CPUServiceTest, AnArrayTooShortLeavesThePreviousTicksAlone) {
    read(processorTicks({{0, 0, 0, 0}}));
    HostProcessorInfo answer = processorTicks({{500, 0, 0, 0}});
    answer.processorCount = 2;
    read(answer);
    EXPECT_DOUBLE_EQ(read(processorTicks({{30, 0, 70, 0}})).usagePercentage, 30);
}

TEST_F(CPUServiceTest, AnEmptyArrayIsTooShortForOneProcessor) {
    const CPUInfo info =
        read({.result = 0, .processorCount = 1, .words = std::vector<std::uint32_t>{}});
    EXPECT_THAT(info.coreUsages, IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CPUServiceTest, AProcessorCountBeyondAnyArrayReadsIdle) {
    HostProcessorInfo answer = processorTicks({{10, 0, 10, 0}});
    // Sixteen bytes each come to 2^32 bytes, and just below.
    for (const std::uint32_t count : {0x10000000U, kLargestCount}) {
        answer.processorCount = count;
        EXPECT_THAT(read(answer).coreUsages, IsEmpty());
    }
}

TEST_F(CPUServiceTest, WordsBehindTheLastProcessorAreIgnored) {
    HostProcessorInfo answer = processorTicks({{10, 0, 90, 0}});
    answer.words->insert(answer.words->end(), {7, 7, 7, 7, 7});
    read(processorTicks({{0, 0, 0, 0}}));
    EXPECT_THAT(read(answer).coreUsages, ElementsAre(DoubleEq(10)));
}

TEST_F(CPUServiceTest, SuccessIsNotLogged) {
    read(processorTicks({{0, 0, 0, 0}}));
    read(processorTicks({{1, 1, 1, 1}}));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(CPUService, TheDefaultLogRecordsNothing) {
    platform::testing::ScriptedKernel kernel;
    CPUService service(kernel);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    service.readCPUInfo();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

/// Reads again while a failure is being logged.
class ReentrantLog final : public platform::LogHandle {
 public:
    void write(platform::LogLevel, std::string_view) override {
        kernel->answers.hostProcessorInfo.set(processorTicks({{1, 2, 3, 4}}));
        inner = service->readCPUInfo();
    }

    platform::testing::ScriptedKernel* kernel = nullptr;
    CPUService* service = nullptr;
    CPUInfo inner;
};

TEST(CPUService, AFailureIsLoggedWithoutTheLock) {
    platform::testing::ScriptedKernel kernel;
    ReentrantLog log;
    CPUService service(kernel, platform::Logger(log));
    log.kernel = &kernel;
    log.service = &service;
    service.readCPUInfo();
    EXPECT_THAT(log.inner.coreUsages, ElementsAre(0));
}

}  // namespace
}  // namespace tarnwick
