// SPDX-License-Identifier: MIT
// How the rows of the process lists get their names.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/testing/scripted_kernel.h"
#include "platform/testing/scripted_process_table.h"
#include "services/process_service.h"

namespace tarnwick {
namespace {

using testing::ElementsAre;
using testing::Field;

constexpr std::uint64_t kMegabyte = 1'000'000;

class ProcessServiceNames : public testing::Test {
 protected:
    ProcessServiceNames() {
        // By processor use 1 before 2 before 3, by memory 3 before 2 before 1.
        table.processes = {
            {.identifier = 1, .command = "one", .task{{.residentSize = kMegabyte}}},
            {.identifier = 2, .command = "two", .task{{.residentSize = 2 * kMegabyte}}},
            {.identifier = 3, .command = "six", .task{{.residentSize = 3 * kMegabyte}}}};
    }

    std::vector<std::string> lookups() {
        std::vector<std::string> found;
        for (const std::string& call : table.calls()) {
            if (call.starts_with("runningApplication")) {
                found.push_back(call);
            }
        }
        return found;
    }

    platform::testing::ScriptedProcessTable table;
    platform::testing::ScriptedKernel kernel;
    ProcessService service{table, kernel};
};

TEST_F(ProcessServiceNames, ARowHasItsCommandWhichIsReadOnce) {
    table.commandLines = {{1, "/usr/bin/one -a"}, {2, std::string(5000, 'x')}, {3, "s\xFF"}};
    TopProcessLists lists = service.readTopProcesses(3);
    EXPECT_EQ(table.commandLineReads, 3);
    lists = service.readTopProcesses(3);
    EXPECT_EQ(table.commandLineReads, 3);
    for (const auto& list : {lists.cpu, lists.memory}) {
        for (const AppProcessInfo& row : list) {
            EXPECT_EQ(row.command, row.id == 1   ? "/usr/bin/one -a"
                                   : row.id == 2 ? std::string(300, 'x')
                                                 : "s\uFFFD");
        }
    }
    // Another process of that number has another name.
    table.processes[0].command = "uno";
    table.commandLines[1] = "/usr/bin/uno";
    lists = service.readTopProcesses(3);
    EXPECT_EQ(table.commandLineReads, 4);
}

TEST_F(ProcessServiceNames, TheCPUListIsNamedBeforeTheMemoryListAndEachProcessOnce) {
    service.readTopProcesses(2);
    EXPECT_THAT(lookups(), ElementsAre("runningApplication 1", "runningApplication 2",
                                       "runningApplication 3"));
}

TEST_F(ProcessServiceNames, OnlyTheRowsThatAreShownAreLookedUp) {
    service.readTopProcesses(1);
    EXPECT_THAT(lookups(), ElementsAre("runningApplication 1", "runningApplication 3"));
}

TEST_F(ProcessServiceNames, AProcessInBothListsHasOneNameEvenIfItsLookUpWouldChange) {
    table.duringCall = [this](const std::string& call) {
        if (call == "runningApplication 1") {
            table.applications[1].localizedName->append("!");
        }
    };
    table.applications[1] = {.localizedName = "Maps"};
    const TopProcessLists lists = service.readTopProcesses(3);
    EXPECT_EQ(lists.cpu.at(0).name, "Maps!");
    EXPECT_EQ(lists.memory.at(2).name, "Maps!");
}

TEST_F(ProcessServiceNames, ANameIsLookedUpAgainAtTheNextCall) {
    table.applications[1] = {.localizedName = "Maps"};
    service.readTopProcesses(1);
    table.applications[1] = {.localizedName = "Charts"};
    EXPECT_EQ(service.readTopProcesses(1).cpu.at(0).name, "Charts");
}

TEST_F(ProcessServiceNames, WithoutAnApplicationNameTheCommandStays) {
    const TopProcessLists lists = service.readTopProcesses(3);
    EXPECT_THAT(lists.cpu, ElementsAre(Field(&AppProcessInfo::name, "one"),
                                       Field(&AppProcessInfo::name, "two"),
                                       Field(&AppProcessInfo::name, "six")));
}

TEST_F(ProcessServiceNames, AnEmptyNameOfThePlatformIsTakenAsItIs) {
    table.applications[1] = {.localizedName = ""};
    EXPECT_EQ(service.readTopProcesses(1).cpu.at(0).name, "");
}

TEST_F(ProcessServiceNames, ACommandThatIsNotUTF8IsRepaired) {
    table.processes = {{.identifier = 1, .command = "caf\xC3", .task{{.residentSize = kMegabyte}}}};
    EXPECT_EQ(service.readTopProcesses(1).cpu.at(0).name, "caf\xEF\xBF\xBD");
}

TEST_F(ProcessServiceNames, ANameCannotTurnOrBreakItsRow) {
    table.processes[0].command = "a\u202Egpj\u202C.exe\n50 %";
    table.applications[2] = {.localizedName = "\u2066Maps\u2069\u200F"};
    table.paths[3] = "/opt/\u061Csix\tseven";
    table.commandLines = {{1, "/usr/bin/one\n\u202E-a"}};
    const TopProcessLists lists = service.readTopProcesses(3);
    EXPECT_EQ(lists.cpu.at(0).name, "agpj.exe 50 %");
    EXPECT_EQ(lists.cpu.at(0).command, "/usr/bin/one -a");
    EXPECT_EQ(lists.cpu.at(1).name, "Maps");
    EXPECT_EQ(lists.cpu.at(2).name, "six seven");
}

TEST_F(ProcessServiceNames, ANameThatNobodySeesIsTheNumber) {
    table.processes[0].command = "  \t";
    table.processes[1].command = "\u202E\u200B";
    table.paths[3] = "/opt/\u3164\u2800";
    const TopProcessLists lists = service.readTopProcesses(3);
    EXPECT_EQ(lists.cpu.at(0).name, "PID 1");
    EXPECT_EQ(lists.cpu.at(1).name, "PID 2");
    EXPECT_EQ(lists.memory.at(0).name, "PID 3");
}

TEST_F(ProcessServiceNames, ThePreviousListsKeepTheirNames) {
    table.applications[1] = {.localizedName = "Maps"};
    service.readTopProcesses(1);
    table.applications.clear();
    table.processes.clear();
    EXPECT_EQ(service.readTopProcesses(1).cpu.at(0).name, "Maps");
}

}  // namespace
}  // namespace tarnwick
