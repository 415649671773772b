// SPDX-License-Identifier: MIT
#include "services/process_service.h"

#include <algorithm>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "platform/testing/recording_log.h"
#include "platform/testing/scripted_kernel.h"
#include "platform/testing/scripted_process_table.h"

namespace tarnwick {
namespace {

using platform::LogLevel;
using platform::ProcessListing;
using platform::TimebaseInfo;
using platform::testing::ScriptedProcess;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint64_t kBig = 1'000'000;
constexpr std::uint64_t kSecond = 1'000'000'000;

ScriptedProcess process(std::int32_t identifier, std::uint64_t residentSize,
                        std::uint64_t totalUser = 0, std::uint64_t totalSystem = 0) {
    return {
        .identifier = identifier,
        .command = "p" + std::to_string(identifier),
        .task{{.residentSize = residentSize, .totalUser = totalUser, .totalSystem = totalSystem}}};
}

auto ids(const std::vector<std::int32_t>& expected) {
    std::vector<testing::Matcher<AppProcessInfo>> rows;
    for (const std::int32_t id : expected) {
        rows.push_back(Field(&AppProcessInfo::id, id));
    }
    return testing::ElementsAreArray(rows);
}

class ProcessServiceTest : public testing::Test {
 protected:
    /// Lets time pass in which the process uses this much, and gives its share.
    double shareAfter(double seconds, std::uint64_t user, std::uint64_t system = 0) {
        table.processes.at(0).task->totalUser += user;
        table.processes.at(0).task->totalSystem += system;
        return shareAfter(seconds);
    }
    double shareAfter(double seconds) {
        kernel.advance(seconds);
        return service.readTopProcesses(1).cpu.at(0).cpuUsage;
    }

    platform::testing::ScriptedProcessTable table;
    platform::testing::ScriptedKernel kernel;
    platform::testing::RecordingLog log;
    ProcessService service{table, kernel, platform::Logger(log)};
};

TEST_F(ProcessServiceTest, TheFirstCallReportsEveryProcessAtZeroInTableOrder) {
    table.processes = {process(5, kBig, 90 * kSecond), process(3, kBig - 1, 99 * kSecond),
                       process(9, kBig, kSecond), process(4, 3 * kBig, 5),
                       process(8, 2 * kBig, 70 * kSecond)};
    const TopProcessLists lists = service.readTopProcesses(3);
    EXPECT_THAT(lists.cpu, ids({5, 9, 4}));
    EXPECT_THAT(lists.cpu, testing::Each(Field(&AppProcessInfo::cpuUsage, 0.0)));
    EXPECT_THAT(lists.memory, ids({4, 8, 5}));
}

TEST_F(ProcessServiceTest, ARowSaysWhatWasMeasured) {
    table.processes = {process(7, 3 * kBig, 10, 20)};
    service.readTopProcesses(3);
    table.processes = {process(7, 5 * kBig, 10 + kSecond / 2, 20 + kSecond / 4)};
    kernel.advance(2);
    const AppProcessInfo row{.id = 7, .name = "p7", .cpuUsage = 37.5, .memoryUsage = 5 * kBig};
    const TopProcessLists lists = service.readTopProcesses(3);
    EXPECT_THAT(lists.cpu, ElementsAre(row));
    EXPECT_THAT(lists.memory, ElementsAre(row));
}

TEST_F(ProcessServiceTest, AShareIsOfTheWholeMachine) {
    table.processors = 8;
    table.processes = {process(1, kBig)};
    shareAfter(1);
    EXPECT_DOUBLE_EQ(shareAfter(2, 2 * kSecond), 12.5);
    EXPECT_DOUBLE_EQ(shareAfter(2, 4 * kSecond, 4 * kSecond), 50);
}

TEST_F(ProcessServiceTest, AProcessorCountBelowOneCountsAsOne) {
    table.processors = 0;
    table.processes = {process(1, kBig)};
    shareAfter(1);
    EXPECT_DOUBLE_EQ(shareAfter(4, kSecond), 25);
}

TEST_F(ProcessServiceTest, TimesAreConvertedWithTheTimeBase) {
    table.timebase = TimebaseInfo{.numer = 125, .denom = 3};
    table.processes = {process(1, kBig)};
    shareAfter(1);
    // 24 million units a second.
    EXPECT_DOUBLE_EQ(shareAfter(1, 6'000'000), 25);
}

TEST_F(ProcessServiceTest, WithoutATimeBaseAUnitIsANanosecond) {
    table.timebase = std::nullopt;
    table.processes = {process(1, kBig)};
    shareAfter(1);
    EXPECT_DOUBLE_EQ(shareAfter(4, kSecond), 25);
}

TEST_F(ProcessServiceTest, ATimeBaseOverZeroCountsAsNone) {
    table.timebase = TimebaseInfo{.numer = 125, .denom = 0};
    table.processes = {process(1, kBig)};
    shareAfter(1);
    EXPECT_DOUBLE_EQ(shareAfter(4, kSecond), 25);
}

TEST_F(ProcessServiceTest, ProcessorCountAndTimeBaseAreAskedForOnce) {
    table.processes = {process(1, kBig)};
    shareAfter(1);
    shareAfter(1, kSecond / 2);
    table.processors = 100;
    table.timebase = TimebaseInfo{.numer = 9, .denom = 1};
    EXPECT_DOUBLE_EQ(shareAfter(1, kSecond / 2), 50);
    EXPECT_EQ(std::ranges::count(table.calls(), "processorCount"), 1);
    EXPECT_EQ(std::ranges::count(table.calls(), "timebaseInfo"), 1);
}

TEST_F(ProcessServiceTest, AShareIsLoweredToAHundred) {
    table.processes = {process(1, kBig)};
    shareAfter(1);
    EXPECT_EQ(shareAfter(1, 3 * kSecond), 100);
}

TEST_F(ProcessServiceTest, WithNoTimeElapsedAShareIsZeroAndTheHistoryIsRenewed) {
    table.processes = {process(1, kBig)};
    shareAfter(1);
    EXPECT_EQ(shareAfter(0, kSecond), 0);
    EXPECT_EQ(shareAfter(1), 0);
}

TEST_F(ProcessServiceTest, AClockThatWentBackGivesZero) {
    table.processes = {process(1, kBig)};
    shareAfter(10);
    EXPECT_EQ(shareAfter(-5, kSecond), 0);
    EXPECT_DOUBLE_EQ(shareAfter(2, kSecond), 50);
}

TEST_F(ProcessServiceTest, ACounterThatWentBackwardsContributesNothing) {
    table.processes = {process(1, kBig, 50 * kSecond, 50 * kSecond)};
    shareAfter(1);
    // The identifier belongs to another process now.
    table.processes = {process(1, kBig, 3 * kSecond, 2 * kSecond)};
    EXPECT_EQ(shareAfter(1), 0);
    EXPECT_DOUBLE_EQ(shareAfter(4, kSecond), 25);
    // Only one of the two went back.
    table.processes.at(0).task->totalUser = 0;
    EXPECT_DOUBLE_EQ(shareAfter(4, 0, 2 * kSecond), 50);
    table.processes.at(0).task->totalSystem = 0;
    EXPECT_DOUBLE_EQ(shareAfter(4, 3 * kSecond), 75);
}

TEST_F(ProcessServiceTest, AShareIsMeasuredFromTheCallBefore) {
    table.processes = {process(1, kBig)};
    shareAfter(1);
    EXPECT_DOUBLE_EQ(shareAfter(1, kSecond), 100);
    EXPECT_EQ(shareAfter(1), 0);
    // Over a long pause the share is the mean.
    EXPECT_DOUBLE_EQ(shareAfter(3600, 36 * kSecond), 1);
}

TEST_F(ProcessServiceTest, TheClockIsReadForEachProcessAtItsMeasurement) {
    table.processes = {process(1, kBig), process(2, kBig), process(3, kBig)};
    service.readTopProcesses(3);
    table.processes.at(0).task->totalUser = kSecond;
    table.processes.at(2).task->totalUser = kSecond;
    kernel.advance(2);
    // Measuring the second takes two seconds.
    table.duringCall = [this](const std::string& call) {
        if (call == "taskInformation 2") {
            kernel.advance(2);
        }
    };
    const auto rows = service.readTopProcesses(3).cpu;
    EXPECT_THAT(rows, ids({1, 3, 2}));
    EXPECT_DOUBLE_EQ(rows.at(0).cpuUsage, 50);
    EXPECT_DOUBLE_EQ(rows.at(1).cpuUsage, 25);
}

TEST_F(ProcessServiceTest, BothThresholdsAreInclusive) {
    table.processes = {process(1, 10), process(2, 999'999), process(3, 1'000'000), process(4, 10),
                       process(5, kBig)};
    service.readTopProcesses(5);
    kernel.advance(1000);
    table.processes.at(0).task->totalUser = kSecond;           // Exactly 0.1 %.
    table.processes.at(1).task->totalUser = kSecond * 9 / 10;  // 0.09 %.
    table.processes.at(3).task->totalUser = kSecond - 1000;
    const TopProcessLists lists = service.readTopProcesses(5);
    EXPECT_THAT(lists.cpu, ids({1, 3, 5}));
    EXPECT_DOUBLE_EQ(lists.cpu.at(0).cpuUsage, 0.1);
    EXPECT_THAT(lists.memory, ids({3, 5, 1}));
}

TEST_F(ProcessServiceTest, TheProgramItselfAndIdentifierZeroNeverAppear) {
    table.own = 42;
    table.processes = {process(0, 9 * kBig), process(42, 8 * kBig), process(7, kBig)};
    for (int i = 0; i < 2; ++i) {
        const TopProcessLists lists = service.readTopProcesses(3);
        EXPECT_THAT(lists.cpu, ids({7}));
        EXPECT_THAT(lists.memory, ids({7}));
    }
    // They are not even measured.
    EXPECT_THAT(table.calls(), testing::Not(testing::Contains("taskInformation 0")));
    EXPECT_THAT(table.calls(), testing::Not(testing::Contains("taskInformation 42")));
}

TEST_F(ProcessServiceTest, AnIdentifierBelowZeroIsListedLikeAnyOther) {
    table.processes = {process(-3, kBig)};
    EXPECT_THAT(service.readTopProcesses(3).memory, ids({-3}));
}

TEST_F(ProcessServiceTest, AProcessThatCannotBeMeasuredIsLeftOutAndKeepsItsHistory) {
    table.processes = {process(1, kBig, 10 * kSecond), process(2, kBig)};
    service.readTopProcesses(3);
    table.processes.at(0).task.reset();
    kernel.advance(1);
    EXPECT_THAT(service.readTopProcesses(3).memory, ids({2}));
    // Its share spans the time since it was last measured.
    table.processes.at(0) = process(1, kBig, 11 * kSecond);
    kernel.advance(1);
    const auto rows = service.readTopProcesses(3).cpu;
    EXPECT_THAT(rows, ids({1, 2}));
    EXPECT_DOUBLE_EQ(rows.at(0).cpuUsage, 50);
}

TEST_F(ProcessServiceTest, AProcessThatWasNotKeptHasAHistoryAllTheSame) {
    table.processes = {process(1, 10), process(2, kBig)};
    service.readTopProcesses(3);
    table.processes.at(0).task->totalUser = kSecond;
    kernel.advance(1);
    EXPECT_EQ(service.readTopProcesses(3).cpu.at(0).cpuUsage, 100);
}

TEST_F(ProcessServiceTest, EqualOnesStayInTableOrder) {
    table.processes = {process(9, 2 * kBig), process(1, kBig), process(8, 2 * kBig),
                       process(2, kBig), process(7, 2 * kBig)};
    service.readTopProcesses(5);
    kernel.advance(10);
    for (const std::size_t index : {1U, 2U, 4U}) {
        table.processes.at(index).task->totalUser = kSecond;
    }
    const TopProcessLists lists = service.readTopProcesses(5);
    EXPECT_THAT(lists.cpu, ids({1, 8, 7, 9, 2}));
    EXPECT_THAT(lists.memory, ids({9, 8, 7, 1, 2}));
}

TEST_F(ProcessServiceTest, WithALimitOfZeroBothListsAreEmpty) {
    table.processes = {process(1, kBig)};
    const TopProcessLists lists = service.readTopProcesses(0);
    EXPECT_THAT(lists.cpu, IsEmpty());
    EXPECT_THAT(lists.memory, IsEmpty());
}

TEST_F(ProcessServiceTest, WithFewerProcessesThanTheLimitTheListsAreShorter) {
    table.processes = {process(1, kBig), process(2, kBig)};
    const TopProcessLists lists = service.readTopProcesses(std::numeric_limits<int>::max());
    EXPECT_THAT(lists.cpu, SizeIs(2));
    EXPECT_THAT(lists.memory, SizeIs(2));
}

using ProcessServiceDeathTest = ProcessServiceTest;

TEST_F(ProcessServiceDeathTest, ANegativeLimitIsFatal) {
    table.processes = {process(1, kBig)};
    EXPECT_DEATH(service.readTopProcesses(-1), "");
}

TEST_F(ProcessServiceDeathTest, ANegativeLimitIsFatalWithoutProcesses) {
    EXPECT_DEATH(service.readTopProcesses(-1), "");
}

TEST_F(ProcessServiceDeathTest, TimesBeyondAnyProcessAreFatalRatherThanWrong) {
    table.processes = {process(1, kBig)};
    service.readTopProcesses(1);
    kernel.advance(1);
    constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    table.processes = {process(1, kBig, most, 1)};
    EXPECT_DEATH(service.readTopProcesses(1), "");
}

TEST_F(ProcessServiceTest, TwoProcessesOfOneApplicationAreTwoRows) {
    table.processes = {process(1, kBig), process(2, kBig)};
    for (const std::int32_t id : {1, 2}) {
        table.applications[id] = {.localizedName = "Maps"};
    }
    const auto rows = service.readTopProcesses(3).memory;
    EXPECT_THAT(rows, ids({1, 2}));
    EXPECT_THAT(rows, testing::Each(Field(&AppProcessInfo::name, "Maps")));
}

TEST_F(ProcessServiceTest, AnEmptyEnumerationIsTriedOnceMore) {
    table.processes = {process(1, kBig)};
    table.listing.queue(ProcessListing::noList);
    EXPECT_THAT(service.readTopProcesses(3).memory, ids({1}));
    EXPECT_EQ(std::ranges::count(table.calls(), "forEachProcess"), 2);
}

TEST_F(ProcessServiceTest, AnEnumerationWithoutAnyKeptProcessIsTriedOnceMore) {
    table.processes = {process(1, 10)};
    service.readTopProcesses(3);
    EXPECT_EQ(std::ranges::count(table.calls(), "forEachProcess"), 2);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ProcessServiceTest, AnEnumerationThatGivesProcessesIsNotRepeated) {
    table.processes = {process(1, kBig)};
    service.readTopProcesses(3);
    EXPECT_EQ(std::ranges::count(table.calls(), "forEachProcess"), 1);
}

TEST_F(ProcessServiceTest, WhenTheTableCannotBeReadTwiceThePreviousListsStandAgain) {
    table.processes = {process(1, kBig), process(2, 2 * kBig)};
    const TopProcessLists before = service.readTopProcesses(1);
    table.listing.set(ProcessListing::noList);
    // Neither the limit nor another name changes them.
    table.applications[2] = {.localizedName = "Other"};
    for (const int limit : {3, 0, 1}) {
        const TopProcessLists again = service.readTopProcesses(limit);
        EXPECT_EQ(again.cpu, before.cpu);
        EXPECT_EQ(again.memory, before.memory);
    }
    table.listing.set(ProcessListing::complete);
    EXPECT_THAT(service.readTopProcesses(3).memory, ids({2, 1}));
}

TEST_F(ProcessServiceTest, ThePreviousListsAreThoseOfTheLastCallThatGaveAny) {
    table.processes = {process(1, kBig)};
    service.readTopProcesses(3);
    table.processes = {process(2, kBig)};
    service.readTopProcesses(3);
    table.processes.clear();
    service.readTopProcesses(3);
    EXPECT_THAT(service.readTopProcesses(3).cpu, ids({2}));
    EXPECT_THAT(service.readTopProcesses(3).memory, ids({2}));
}

TEST_F(ProcessServiceTest, BeforeAnythingWasReadThePreviousListsAreEmpty) {
    table.listing.set(ProcessListing::noBufferSize);
    const TopProcessLists lists = service.readTopProcesses(3);
    EXPECT_THAT(lists.cpu, IsEmpty());
    EXPECT_THAT(lists.memory, IsEmpty());
}

TEST_F(ProcessServiceTest, EachFailureIsLoggedAtEachTry) {
    table.listing.queue(ProcessListing::noBufferSize);
    table.listing.queue(ProcessListing::noList);
    service.readTopProcesses(3);
    EXPECT_THAT(log.lines(),
                ElementsAre(std::pair(LogLevel::error,
                                      std::string("Failed to get process list buffer size")),
                            std::pair(LogLevel::error, std::string("Failed to get process list"))));
}

TEST_F(ProcessServiceTest, PruningRemovesATimeExactlyAtTheCutoff) {
    table.processes = {process(1, kBig)};
    shareAfter(100);
    kernel.advance(60);
    service.pruneStaleProcesses();
    EXPECT_EQ(shareAfter(0.5, kSecond / 4), 0);
}

TEST_F(ProcessServiceTest, PruningKeepsATimeAfterTheCutoff) {
    table.processes = {process(1, kBig)};
    shareAfter(100);
    kernel.advance(59.5);
    service.pruneStaleProcesses();
    EXPECT_DOUBLE_EQ(shareAfter(0.5, 6 * kSecond), 10);
}

TEST_F(ProcessServiceTest, PruningRemovesOnlyProcessesThatWereNotMeasuredLately) {
    table.processes = {process(1, kBig), process(2, kBig)};
    service.readTopProcesses(3);
    kernel.advance(40);
    // Gone for a while.
    table.processes = {process(2, kBig)};
    service.readTopProcesses(3);
    kernel.advance(40);
    service.pruneStaleProcesses();
    table.processes = {process(1, kBig, 8 * kSecond), process(2, kBig, 8 * kSecond)};
    const auto rows = service.readTopProcesses(3).cpu;
    EXPECT_THAT(rows, ids({2, 1}));
    EXPECT_DOUBLE_EQ(rows.at(0).cpuUsage, 20);
    EXPECT_EQ(rows.at(1).cpuUsage, 0);
}

TEST_F(ProcessServiceTest, AnEndedProcessKeepsItsHistoryUntilItIsPruned) {
    table.processes = {process(1, kBig), process(2, kBig)};
    service.readTopProcesses(3);
    table.processes.pop_back();
    kernel.advance(300);
    service.readTopProcesses(3);
    table.processes.push_back(process(2, kBig, 150 * kSecond));
    kernel.advance(300);
    EXPECT_DOUBLE_EQ(service.readTopProcesses(3).cpu.at(0).cpuUsage, 25);
}

TEST_F(ProcessServiceTest, TheFirstListAfterReleasingCachesSaysNothingOfTheTimeSince) {
    table.processes = {process(1, kBig), process(2, kBig)};
    shareAfter(1);
    EXPECT_DOUBLE_EQ(shareAfter(2, kSecond), 50);
    service.releaseCaches();
    EXPECT_EQ(table.calls().back(), "releaseCaches");
    // A busy hour in which nobody looked.
    EXPECT_EQ(shareAfter(3600, 3600 * kSecond), 0);
    EXPECT_DOUBLE_EQ(shareAfter(2, kSecond / 2), 25);
}

TEST_F(ProcessServiceTest, ReleasingCachesKeepsThePreviousLists) {
    table.processes = {process(1, kBig)};
    const TopProcessLists before = service.readTopProcesses(3);
    service.releaseCaches();
    table.processes.clear();
    EXPECT_EQ(service.readTopProcesses(3).memory, before.memory);
}

}  // namespace
}  // namespace tarnwick
