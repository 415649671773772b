// SPDX-License-Identifier: MIT
#include "platform/macos/readers/process_table_reader.h"

#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/testing/recording_log.h"
#include "platform/testing/scripted_kernel.h"
#include "services/process_service.h"
#include "tests/platform/macos/readers/scripted_raw_process_table.h"

namespace tarnwick {
namespace {

using platform::ProcessListing;
using platform::TaskInformation;
using testing::ElementsAre;

std::vector<std::byte> tableOf(const std::vector<std::pair<std::int32_t, std::string>>& processes) {
    std::vector<std::byte> bytes(648 * processes.size());
    std::size_t start = 0;
    for (const auto& [identifier, command] : processes) {
        std::memcpy(bytes.data() + start + 40, &identifier, sizeof identifier);
        std::memcpy(bytes.data() + start + 243, command.data(), command.size());
        start += 648;
    }
    return bytes;
}

std::vector<std::byte> taskOf(std::uint64_t resident, std::uint64_t user, std::uint64_t system) {
    std::vector<std::byte> bytes(96);
    const std::uint64_t fields[] = {resident, user, system};
    std::memcpy(bytes.data() + 8, fields, sizeof fields);
    return bytes;
}

class ProcessTableReaderTest : public testing::Test {
 protected:
    /// "7 ls", with the task's figures behind it where they are asked for and known.
    ProcessListing walk(bool measure = false) {
        visited.clear();
        return reader.forEachProcess([&](platform::ProcessEntry& process) {
            std::string text = std::to_string(process.identifier()) + " ";
            text += process.command();
            if (measure) {
                const std::optional<TaskInformation> task = process.taskInformation();
                text += task ? " " + std::to_string(task->residentSize) + " " +
                                   std::to_string(task->totalUser) + " " +
                                   std::to_string(task->totalSystem)
                             : " -";
            }
            visited.push_back(text);
        });
    }
    void give(std::vector<std::byte> table) {
        raw.size = table.size();
        raw.table = std::move(table);
    }

    platform::testing::ScriptedRawProcessTable raw;
    ProcessTableReader reader{raw};
    std::vector<std::string> visited;
};

TEST_F(ProcessTableReaderTest, VisitsTheRecordsInTableOrder) {
    give(tableOf({{4711, "Finder"}, {0, "kernel_task"}, {1, "launchd"}}));
    EXPECT_EQ(walk(), ProcessListing::complete);
    EXPECT_THAT(visited, ElementsAre("4711 Finder", "0 kernel_task", "1 launchd"));
}

TEST_F(ProcessTableReaderTest, AsksForTheSizeFirstAndThenFillsOneBuffer) {
    give(tableOf({{1, "a"}, {2, "b"}}));
    walk();
    EXPECT_THAT(raw.calls(), ElementsAre("sysctl 1 14 0 0", "sysctl 1 14 0 0, 1296"));
}

TEST_F(ProcessTableReaderTest, WithoutASizeNothingElseIsAskedFor) {
    raw.table = tableOf({{1, "a"}});
    EXPECT_EQ(walk(), ProcessListing::noBufferSize);
    EXPECT_THAT(visited, ElementsAre());
    EXPECT_THAT(raw.calls(), ElementsAre("sysctl 1 14 0 0"));
}

TEST_F(ProcessTableReaderTest, WithoutTheTableNothingIsVisited) {
    raw.size = 1296;
    EXPECT_EQ(walk(), ProcessListing::noList);
    EXPECT_THAT(visited, ElementsAre());
}

TEST_F(ProcessTableReaderTest, TheBufferHoldsWholeRecords) {
    give(tableOf({{1, "a"}, {2, "b"}}));
    raw.size = 648 * 2 + 647;
    walk();
    EXPECT_EQ(raw.calls().back(), "sysctl 1 14 0 0, 1296");
    EXPECT_THAT(visited, ElementsAre("1 a", "2 b"));
}

TEST_F(ProcessTableReaderTest, ATableThatShrankMeanwhileHasOnlyWhatWasWritten) {
    give(tableOf({{1, "a"}, {2, "b"}, {3, "c"}}));
    raw.written = 648 * 2 + 100;
    EXPECT_EQ(walk(), ProcessListing::complete);
    EXPECT_THAT(visited, ElementsAre("1 a", "2 b"));
    raw.written = 0;
    EXPECT_EQ(walk(), ProcessListing::complete);
    EXPECT_THAT(visited, ElementsAre());
}

TEST_F(ProcessTableReaderTest, ASizeWrittenBeyondTheBufferIsNotBelieved) {
    give(tableOf({{1, "a"}}));
    raw.written = 648 * 1000;
    EXPECT_EQ(walk(), ProcessListing::complete);
    EXPECT_THAT(visited, ElementsAre("1 a"));
}

TEST_F(ProcessTableReaderTest, AnEmptyTableIsComplete) {
    give({});
    EXPECT_EQ(walk(), ProcessListing::complete);
    EXPECT_THAT(visited, ElementsAre());
}

TEST_F(ProcessTableReaderTest, AsksForTheTaskInformationOfTheVisitedProcess) {
    give(tableOf({{7, "a"}}));
    raw.tasks[7] = taskOf(4096, 30, 40);
    walk(true);
    EXPECT_THAT(visited, ElementsAre("7 a 4096 30 40"));
    EXPECT_EQ(raw.calls().back(), "procPidInfo 7 4 0 96");
}

TEST_F(ProcessTableReaderTest, DoesNotMeasureWhatNobodyAsksFor) {
    give(tableOf({{7, "a"}}));
    walk();
    EXPECT_EQ(raw.calls().size(), 2U);
}

TEST_F(ProcessTableReaderTest, ATaskInformationOfAnyOtherSizeIsAFailure) {
    give(tableOf({{1, "gone"}, {2, "short"}, {3, "long"}, {4, "whole"}}));
    raw.tasks[2] = std::vector<std::byte>(95, std::byte{1});
    raw.tasks[3] = std::vector<std::byte>(97, std::byte{1});
    raw.tasks[4] = taskOf(1, 2, 3);
    walk(true);
    EXPECT_THAT(visited, ElementsAre("1 gone -", "2 short -", "3 long -", "4 whole 1 2 3"));
}

TEST_F(ProcessTableReaderTest, AnExecutablePathEndsAtTheFirstZero) {
    raw.paths[7] = std::string("/bin/ls\0rest", 12);
    EXPECT_EQ(reader.executablePath(7), "/bin/ls");
    EXPECT_THAT(raw.calls(), ElementsAre("procPidPath 7 4096"));
}

TEST_F(ProcessTableReaderTest, AnExecutablePathMayFillTheBuffer) {
    raw.paths[7] = std::string(5000, 'x');
    EXPECT_EQ(reader.executablePath(7), std::string(4096, 'x'));
}

TEST_F(ProcessTableReaderTest, ALengthBelowOneMeansThatThereIsNoPath) {
    raw.paths[7] = "";
    EXPECT_EQ(reader.executablePath(7), std::nullopt);
    EXPECT_EQ(reader.executablePath(8), std::nullopt);
}

TEST_F(ProcessTableReaderTest, PassesTheFactsOn) {
    raw.facts.own = 5;
    raw.facts.processors = 12;
    raw.facts.timebase = platform::TimebaseInfo{.numer = 125, .denom = 3};
    raw.facts.applications[7] = {.activationPolicy = 1, .localizedName = "Maps"};
    raw.facts.displayNames["/a/B.app"] = "Bee";
    EXPECT_EQ(reader.ownIdentifier(), 5);
    EXPECT_EQ(reader.processorCount(), 12);
    EXPECT_EQ(reader.timebaseInfo()->numer, 125U);
    EXPECT_EQ(reader.runningApplication(7)->localizedName, "Maps");
    EXPECT_FALSE(reader.runningApplication(8));
    EXPECT_EQ(reader.displayName("/a/B.app"), "Bee");
    reader.releaseCaches();
}

TEST_F(ProcessTableReaderTest, CarriesTheServiceFromTheBytesToTheRows) {
    platform::testing::ScriptedKernel kernel;
    platform::testing::RecordingLog log;
    ProcessService service(reader, kernel, platform::Logger(log));
    raw.facts.own = 9;
    raw.facts.processors = 2;
    give(tableOf({{0, "kernel_task"}, {9, "Tarnwick"}, {7, "maps"}, {8, "ls"}}));
    for (const std::int32_t id : {0, 7, 8, 9}) {
        raw.tasks[id] = taskOf(2'000'000, 0, 0);
    }
    raw.paths[7] = "/Applications/Maps.app/Contents/MacOS/maps";
    service.readTopProcesses(3);
    kernel.advance(2);
    raw.tasks[7] = taskOf(3'000'000, 500'000'000, 500'000'000);
    const TopProcessLists lists = service.readTopProcesses(3);
    EXPECT_THAT(lists.cpu,
                ElementsAre(AppProcessInfo{.id = 7,
                                           .name = "Maps",
                                           .cpuUsage = 25,
                                           .memoryUsage = 3'000'000,
                                           .command = "/Applications/Maps.app/Contents/MacOS/maps"},
                            AppProcessInfo{.id = 8, .name = "ls", .memoryUsage = 2'000'000}));

    // Both steps fail, one after the other.
    raw.table.reset();
    EXPECT_EQ(service.readTopProcesses(3).cpu, lists.cpu);
    raw.size.reset();
    EXPECT_EQ(service.readTopProcesses(3).cpu, lists.cpu);
    std::vector<std::string> messages;
    for (const auto& [level, message] : log.lines()) {
        EXPECT_EQ(level, platform::LogLevel::error);
        messages.push_back(message);
    }
    EXPECT_THAT(messages, ElementsAre("Failed to get process list", "Failed to get process list",
                                      "Failed to get process list buffer size",
                                      "Failed to get process list buffer size"));
}

}  // namespace
}  // namespace tarnwick
