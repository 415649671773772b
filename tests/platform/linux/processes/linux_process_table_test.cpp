// SPDX-License-Identifier: MIT
#include "platform/linux/processes/linux_process_table.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <unistd.h>
#include <vector>

#include "platform/linux/files/kept_file.h"
#include "platform/testing/recording_log.h"
#include "platform/testing/scripted_kernel.h"
#include "platform/testing/scripted_workers.h"
#include "services/application_name.h"
#include "services/process_service.h"
#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/files/descriptors.h"
#include "tests/platform/linux/machine_tree.h"
#include "tests/platform/linux/temporary_folder.h"

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::uint64_t pageSize = static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
const std::uint64_t tick = 1'000'000'000 / static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK));

std::string statLine(std::int32_t identifier, const std::string& command, std::uint64_t user,
                     std::uint64_t system, std::uint64_t pages) {
    return std::to_string(identifier) + " (" + command + ") S 1 1 1 0 -1 0 0 0 0 0 " +
           std::to_string(user) + " " + std::to_string(system) + " 0 0 20 0 1 0 100 1000000 " +
           std::to_string(pages) + " 0 1 1\n";
}

class LinuxProcessTableTest : public ::testing::Test {
 protected:
    void write(std::int32_t identifier, const std::string& command, std::uint64_t user,
               std::uint64_t system, std::uint64_t pages) const {
        tree.write("proc/" + std::to_string(identifier) + "/stat",
                   statLine(identifier, command, user, system, pages));
    }
    void runIn(std::int32_t identifier, const std::string& unit) const {
        tree.write("proc/" + std::to_string(identifier) + "/cgroup",
                   "0::/user.slice/user@1000.service/app.slice/" + unit + "\n");
    }
    static std::string groupOf(const std::string& unit) {
        return "sys/fs/cgroup/user.slice/user@1000.service/app.slice/" + unit + "/cgroup.procs";
    }
    void install(const std::string& id, const std::string& keys) const {
        tree.write("usr/share/applications/" + id + ".desktop", "[Desktop Entry]\n" + keys);
    }
    /// "7 bash" for each visited process, with its figures behind it where it has any.
    std::vector<std::string> walk() {
        std::vector<std::string> visited;
        listing = table.forEachProcess([&visited](ProcessEntry& process) {
            std::string text = std::to_string(process.identifier());
            if (const auto task = process.taskInformation()) {
                text += " " + std::to_string(task->residentSize / pageSize) + " " +
                        std::to_string(task->totalUser / tick) + " " +
                        std::to_string(task->totalSystem / tick);
            }
            text += " ";
            text += process.command();
            visited.push_back(text);
        });
        return visited;
    }

    testing::MachineTree tree;
    LinuxProcessTable table{tree.root(), {.dataFolders = {"/usr/share"}, .localeSuffixes = {"de"}}};
    ProcessListing listing = ProcessListing::noBufferSize;
};

TEST_F(LinuxProcessTableTest, VisitsTheProcessesByRisingIdentifier) {
    write(100, "c", 1, 2, 3);
    write(9, "a", 4, 5, 6);
    write(20, "b", 7, 8, 9);
    tree.write("proc/meminfo", "no process");
    tree.makeFolder("proc/0");
    EXPECT_THAT(walk(), ElementsAre("9 6 4 5 a", "20 9 7 8 b", "100 3 1 2 c"));
    EXPECT_EQ(listing, ProcessListing::complete);
}

TEST_F(LinuxProcessTableTest, GivesBytesAndNanoseconds) {
    write(7, "a", 3, 5, 11);
    table.forEachProcess([](ProcessEntry& process) {
        const auto task = process.taskInformation();
        ASSERT_TRUE(task);
        EXPECT_EQ(task->residentSize, 11 * pageSize);
        EXPECT_EQ(task->totalUser, 3 * tick);
        EXPECT_EQ(task->totalSystem, 5 * tick);
    });
    EXPECT_EQ(table.timebaseInfo()->numer, 1U);
    EXPECT_EQ(table.timebaseInfo()->denom, 1U);
}

TEST_F(LinuxProcessTableTest, CommandsMayHoldSpacesBracketsAndLineBreaks) {
    write(7, "a) b (c\nd", 3, 5, 11);
    EXPECT_THAT(walk(), ElementsAre("7 11 3 5 a) b (c\nd"));
}

TEST_F(LinuxProcessTableTest, TheCommandIsThereWithoutTheTaskInformation) {
    write(7, "a", 3, 5, 11);
    table.forEachProcess([](ProcessEntry& process) { EXPECT_EQ(process.command(), "a"); });
}

TEST_F(LinuxProcessTableTest, AProcessThatEndsWhileItIsReadIsVisitedWithoutFigures) {
    write(7, "a", 1, 2, 3);
    write(8, "b", 1, 2, 3);
    tree.makeFolder("proc/9");
    tree.write("proc/10/stat", "");
    std::vector<std::int32_t> measured;
    table.forEachProcess([&](ProcessEntry& process) {
        if (process.identifier() == 7) {
            tree.remove("proc/8");
        }
        if (process.taskInformation()) {
            measured.push_back(process.identifier());
        } else {
            EXPECT_EQ(process.command(), "");
        }
    });
    EXPECT_THAT(measured, ElementsAre(7));
}

TEST_F(LinuxProcessTableTest, ADamagedOrImpossibleProcessHasNoFigures) {
    tree.write("proc/5/stat", "5 (a) S 1 1");
    write(6, "a", std::uint64_t{1} << 62, 0, 1);
    write(7, "a", 0, std::uint64_t{1} << 62, 1);
    write(8, "a", 0, 0, std::numeric_limits<std::uint64_t>::max());
    write(9, "a", (std::uint64_t{1} << 62) / tick, 0, 1);
    EXPECT_THAT(walk(),
                ElementsAre("5 ", "6 a", "7 a", "8 a",
                            "9 1 " + std::to_string((std::uint64_t{1} << 62) / tick) + " 0 a"));
}

TEST_F(LinuxProcessTableTest, EachProcessIsReadAgainInTheNextWalk) {
    write(7, "a", 1, 2, 3);
    walk();
    write(7, "renamed", 10, 20, 30);
    write(8, "new", 0, 0, 1);
    EXPECT_THAT(walk(), ElementsAre("7 30 10 20 renamed", "8 1 0 0 new"));
    tree.remove("proc/7");
    EXPECT_THAT(walk(), ElementsAre("8 1 0 0 new"));
}

TEST_F(LinuxProcessTableTest, TheFilesStayOpenFromWalkToWalkUntilTheCachesAreReleased) {
    write(7, "a", 1, 2, 3);
    write(8, "b", 1, 2, 3);
    const std::size_t before = tarnwick::testing::openDescriptors();
    for (int i = 0; i < 3; ++i) {
        walk();
        EXPECT_EQ(tarnwick::testing::openDescriptors(), before + 2);
    }
    table.releaseCaches();
    EXPECT_EQ(tarnwick::testing::openDescriptors(), before);
    EXPECT_THAT(walk(), ElementsAre("7 3 1 2 a", "8 3 1 2 b"));
}

TEST_F(LinuxProcessTableTest, WhenNoDescriptorIsLeftTheKeptFilesMakeRoomForTheList) {
    for (std::int32_t identifier = 1; identifier <= 20; ++identifier) {
        write(identifier, "a", 1, 2, 3);
    }
    tarnwick::testing::ChildProcess child([this] {
        tarnwick::testing::limitDescriptors(64);
        EXPECT_EQ(walk().size(), 20U);
        // Other code takes all remaining descriptors.
        std::vector<FileDescriptor> others;
        do {
            others.emplace_back("/dev/null");
        } while (others.back().isOpen());
        EXPECT_THAT(walk(), IsEmpty());
        EXPECT_EQ(listing, ProcessListing::noList);
        EXPECT_EQ(walk().size(), 20U);
        EXPECT_EQ(listing, ProcessListing::complete);
    });
    EXPECT_EQ(child.wait(), 0);
}

TEST_F(LinuxProcessTableTest, WithoutProcThereIsNoList) {
    EXPECT_THAT(walk(), IsEmpty());
    EXPECT_EQ(listing, ProcessListing::noList);
    tree.write("proc", "a file");
    EXPECT_THAT(walk(), IsEmpty());
    EXPECT_EQ(listing, ProcessListing::noList);
}

TEST_F(LinuxProcessTableTest, AProcWithoutProcessesIsComplete) {
    tree.makeFolder("proc");
    EXPECT_THAT(walk(), IsEmpty());
    EXPECT_EQ(listing, ProcessListing::complete);
}

TEST_F(LinuxProcessTableTest, TheOwnIdentifierIsWhereSelfLeads) {
    EXPECT_EQ(table.ownIdentifier(), 0);
    tree.link("proc/self", "4711");
    EXPECT_EQ(table.ownIdentifier(), 4711);
    tree.remove("proc/self");
    tree.makeFolder("proc/self");
    EXPECT_EQ(table.ownIdentifier(), 0);
    EXPECT_EQ(LinuxProcessTable().ownIdentifier(), ::getpid());
}

TEST_F(LinuxProcessTableTest, CountsTheProcessorsThatAreOnline) {
    EXPECT_EQ(table.processorCount(), 0);
    tree.write("sys/devices/system/cpu/online", "0-5,8\n");
    EXPECT_EQ(table.processorCount(), 7);
}

TEST_F(LinuxProcessTableTest, AnApplicationIsTheEntryOfTheProcessesUnit) {
    install("org.example.Maps", "Name=Maps\nName[de]=Karten\n");
    runIn(7, "app-gnome-org.example.Maps-4711.scope");
    const auto application = table.runningApplication(7);
    ASSERT_TRUE(application);
    EXPECT_EQ(application->localizedName, "Karten");
    EXPECT_EQ(application->activationPolicy, RunningApplication::kRegularPolicy);
}

TEST_F(LinuxProcessTableTest, AnEntryThatNoMenuShowsIsAnAccessory) {
    install("agent", "Name=Agent\nNoDisplay=true\n");
    runIn(7, "app-agent@autostart.service");
    EXPECT_EQ(table.runningApplication(7)->activationPolicy, RunningApplication::kAccessoryPolicy);
}

TEST_F(LinuxProcessTableTest, TheFirstCandidateThatIsInstalledCounts) {
    install("google-chrome", "Name=Chrome\n");
    runIn(7, "app-google-chrome-4711.scope");
    EXPECT_EQ(table.runningApplication(7)->localizedName, "Chrome");
}

TEST_F(LinuxProcessTableTest, AProcessInNoUnitOrWithoutAnEntryIsNoApplication) {
    runIn(7, "session-2.scope");
    runIn(8, "app-org.example.Missing-1.scope");
    EXPECT_FALSE(table.runningApplication(7));
    EXPECT_FALSE(table.runningApplication(8));
    EXPECT_FALSE(table.runningApplication(9));
}

TEST_F(LinuxProcessTableTest, WhatAnApplicationStartsIsNotTheApplication) {
    install("terminal", "Name=Terminal\n");
    for (const std::int32_t identifier : {7, 8, 9, 10}) {
        runIn(identifier, "app-terminal-7.scope");
    }
    tree.link("proc/7/exe", "/usr/bin/terminal");
    tree.link("proc/8/exe", "/usr/bin/make");
    tree.link("proc/9/exe", "/usr/bin/terminal (deleted)");
    // In the order in which they came, whatever their numbers are.
    tree.write(groupOf("app-terminal-7.scope"), "7\n8\n9\n10\n");
    EXPECT_EQ(table.runningApplication(7)->localizedName, "Terminal");
    EXPECT_FALSE(table.runningApplication(8));
    EXPECT_EQ(table.runningApplication(9)->localizedName, "Terminal");
    // Another user's.
    EXPECT_FALSE(table.runningApplication(10));
    tree.write(groupOf("app-terminal-7.scope"), "8\n7\n9\n10\n");
    EXPECT_FALSE(table.runningApplication(7));
    EXPECT_EQ(table.runningApplication(8)->localizedName, "Terminal");
}

TEST_F(LinuxProcessTableTest, TheFirstProgramMayHideItsExecutable) {
    install("vault", "Name=Vault\n");
    runIn(7, "app-vault-7.scope");
    runIn(8, "app-vault-7.scope");
    tree.link("proc/8/exe", "/usr/bin/make");
    tree.write(groupOf("app-vault-7.scope"), "7\n8\n");
    EXPECT_EQ(table.runningApplication(7)->localizedName, "Vault");
    EXPECT_FALSE(table.runningApplication(8));
}

TEST_F(LinuxProcessTableTest, AShellOrSandboxThatStartsTheFirstProgramIsPassedOver) {
    install("game", "Name=Game\n");
    tree.link("proc/5/exe", "/usr/bin/bwrap");
    tree.link("proc/6/exe", "/usr/bin/bash");
    tree.link("proc/7/exe", "/usr/bin/game");
    for (const std::int32_t identifier : {5, 6, 7}) {
        runIn(identifier, "app-game-5.scope");
    }
    // Processes that this container does not see have the number 0.
    tree.write(groupOf("app-game-5.scope"), "0\n5\n6\n7\n");
    EXPECT_FALSE(table.runningApplication(5));
    EXPECT_FALSE(table.runningApplication(6));
    EXPECT_EQ(table.runningApplication(7)->localizedName, "Game");
    // A script is the application as long as it runs nothing else.
    tree.write(groupOf("app-game-5.scope"), "6\n");
    EXPECT_EQ(table.runningApplication(6)->localizedName, "Game");
}

TEST_F(LinuxProcessTableTest, AUnitThatDoesNotTellWhatItHoldsNamesAllOfIt) {
    install("box", "Name=Box\n");
    runIn(7, "app-box-7.scope/payload");
    tree.link("proc/7/exe", "/usr/bin/inner");
    EXPECT_EQ(table.runningApplication(7)->localizedName, "Box");
    tree.write(groupOf("app-box-7.scope"), "");
    EXPECT_EQ(table.runningApplication(7)->localizedName, "Box");
    tree.write(groupOf("app-box-7.scope"), "6\n");
    EXPECT_FALSE(table.runningApplication(7));
}

TEST_F(LinuxProcessTableTest, TheOlderGroupsAreBelowTheServiceManagersFolder) {
    install("terminal", "Name=Terminal\n");
    runIn(8, "app-terminal-7.scope");
    tree.link("proc/7/exe", "/usr/bin/terminal");
    tree.link("proc/8/exe", "/usr/bin/make");
    tree.write(
        "sys/fs/cgroup/systemd/user.slice/user@1000.service/app.slice/app-terminal-7.scope/"
        "cgroup.procs",
        "7\n8\n");
    EXPECT_FALSE(table.runningApplication(8));
}

TEST_F(LinuxProcessTableTest, EntriesAreForgottenWithTheCaches) {
    install("a", "Name=Old\n");
    runIn(7, "app-a-1.scope");
    runIn(8, "app-b-1.scope");
    EXPECT_EQ(table.runningApplication(7)->localizedName, "Old");
    EXPECT_FALSE(table.runningApplication(8));
    install("a", "Name=New\n");
    install("b", "Name=B\n");
    EXPECT_EQ(table.runningApplication(7)->localizedName, "Old");
    EXPECT_FALSE(table.runningApplication(8));
    table.releaseCaches();
    EXPECT_EQ(table.runningApplication(7)->localizedName, "New");
    EXPECT_EQ(table.runningApplication(8)->localizedName, "B");
}

TEST_F(LinuxProcessTableTest, EntriesOnADiskThatHangsHoldNothingUp) {
    install("a", "Name=A\n");
    install("b", "Name=B\n");
    runIn(7, "app-a-1.scope");
    runIn(8, "app-b-1.scope");
    testing::ScriptedWorkers workers;
    LinuxProcessTable patient(tree.root(), {.dataFolders = {"/usr/share"}, .localeSuffixes = {}},
                              workers);
    EXPECT_EQ(patient.runningApplication(7)->localizedName, "A");
    workers.hangs = true;
    for (int refresh = 0; refresh < 5; ++refresh) {
        EXPECT_FALSE(patient.runningApplication(8));
        // What is known needs no disk.
        EXPECT_EQ(patient.runningApplication(7)->localizedName, "A");
    }
    EXPECT_THAT(workers.waits, ElementsAre(kSensorPatience));
    workers.hangs = false;
    workers.comeBack();
    EXPECT_EQ(patient.runningApplication(8)->localizedName, "B");
}

TEST_F(LinuxProcessTableTest, AnApplicationThatTheUserRemovedIsNone) {
    install("a", "Name=A\nHidden=true\n");
    runIn(7, "app-a-1.scope");
    EXPECT_FALSE(table.runningApplication(7));
}

TEST_F(LinuxProcessTableTest, ACommandIsItsArgumentsWithBlanksBetween) {
    using namespace std::string_literals;
    tree.write("proc/7/cmdline", "/usr/bin/a\0-b\0c d\0"s);
    tree.write("proc/8/cmdline", "renamed: idle\0\0\0\0"s);
    tree.write("proc/9/cmdline", "");
    EXPECT_EQ(table.commandLine(7), "/usr/bin/a -b c d");
    EXPECT_EQ(table.commandLine(8), "renamed: idle");
    // The kernel's own, and one that has ended.
    EXPECT_EQ(table.commandLine(9), "");
    EXPECT_EQ(table.commandLine(10), "");
}

TEST_F(LinuxProcessTableTest, AnExecutableIsWhereItsLinkLeads) {
    tree.link("proc/7/exe", "/usr/bin/a b");
    tree.link("proc/8/exe", "/usr/bin/replaced (deleted)");
    tree.link("proc/9/exe", " (deleted)");
    EXPECT_EQ(table.executablePath(7), "/usr/bin/a b");
    EXPECT_EQ(table.executablePath(8), "/usr/bin/replaced");
    EXPECT_EQ(table.executablePath(9), " (deleted)");
    EXPECT_EQ(table.executablePath(10), std::nullopt);
}

TEST_F(LinuxProcessTableTest, AProgramInMemoryHasItsNameThereAndNoFolder) {
    tree.link("proc/7/exe", "/memfd:renderer (deleted)");
    tree.link("proc/8/exe", "/memfd: (deleted)");
    tree.link("proc/9/exe", "/memfd:cloned:/proc/self/exe (deleted)");
    EXPECT_EQ(table.executablePath(7), "renderer");
    EXPECT_EQ(table.executablePath(8), std::nullopt);
    EXPECT_EQ(table.executablePath(9), std::nullopt);
}

TEST_F(LinuxProcessTableTest, ADisplayNameFollowsTheLastSlash) {
    EXPECT_EQ(table.displayName("/opt/Maps.app"), "Maps.app");
    EXPECT_EQ(table.displayName("Maps"), "Maps");
    EXPECT_EQ(table.displayName(""), "");
}

TEST_F(LinuxProcessTableTest, NamesComeFromTheApplicationThenTheExecutableThenTheCommand) {
    install("org.example.Maps", "Name=Maps\n");
    install("agent", "Name=Agent\nNoDisplay=true\n");
    runIn(1, "app-org.example.Maps-1.scope");
    tree.link("proc/1/exe", "/usr/bin/maps-bin");
    runIn(2, "app-agent-2.scope");
    tree.link("proc/2/exe", "/usr/libexec/agentd");
    tree.link("proc/3/exe", "/usr/bin/make");
    tree.link("proc/4/exe", "/opt/Paint.app/bin/paint");
    EXPECT_EQ(applicationName(table, 1), "Maps");
    EXPECT_EQ(applicationName(table, 2), "Agent");
    EXPECT_EQ(applicationName(table, 3), "make");
    EXPECT_EQ(applicationName(table, 4), "Paint");
    EXPECT_EQ(applicationName(table, 5), std::nullopt);
}

TEST_F(LinuxProcessTableTest, CarriesTheServiceOverAMadeMachine) {
    testing::ScriptedKernel kernel;
    ProcessService service(table, kernel);
    tree.write("sys/devices/system/cpu/online", "0-3\n");
    tree.link("proc/self", "50");
    write(2, "kthreadd", 0, 0, 0);
    write(50, "tarnwick", 500, 500, 99'999);
    write(60, "maps", 100, 100, 2 * 1'000'000 / pageSize);
    write(70, "a (b)\nc", 0, 0, 1'000'000 / pageSize + 1);
    service.readTopProcesses(3);
    kernel.advance(2);
    write(60, "maps", 100 + 1'000'000'000 / tick, 100 + 1'000'000'000 / tick,
          2 * 1'000'000 / pageSize);
    const TopProcessLists lists = service.readTopProcesses(3);
    ASSERT_EQ(lists.cpu.size(), 2U);
    EXPECT_EQ(lists.cpu[0].id, 60);
    EXPECT_DOUBLE_EQ(lists.cpu[0].cpuUsage, 25);
    EXPECT_EQ(lists.cpu[1].name, "a (b) c");
}

TEST_F(LinuxProcessTableTest, ABusyKernelThreadIsListedUnderItsCommandWithoutMemory) {
    testing::ScriptedKernel kernel;
    ProcessService service(table, kernel);
    tree.write("sys/devices/system/cpu/online", "0-1\n");
    const std::string command = "kworker/u16:2-events_unbound";
    write(9, command, 0, 0, 0);
    tree.write("proc/9/cgroup", "0::/\n");
    service.readTopProcesses(3);
    kernel.advance(1);
    write(9, command, 0, 1'000'000'000 / tick, 0);
    const AppProcessInfo row{.id = 9, .name = command, .cpuUsage = 50, .memoryUsage = 0};
    const TopProcessLists lists = service.readTopProcesses(3);
    EXPECT_THAT(lists.cpu, ElementsAre(row));
    EXPECT_THAT(lists.memory, ElementsAre(row));
}

TEST_F(LinuxProcessTableTest, AReusedIdentifierCountsFromZero) {
    testing::ScriptedKernel kernel;
    ProcessService service(table, kernel);
    write(7, "old", 9000, 9000, 1'000'000);
    service.readTopProcesses(3);
    // Another file under the same name, as another process under the same number.
    std::filesystem::rename(tree.root() + "/proc/7", tree.root() + "/gone");
    tree.truncate("gone/stat", 0);
    write(7, "new", 10, 0, 1'000'000);
    kernel.advance(1);
    const TopProcessLists lists = service.readTopProcesses(3);
    ASSERT_EQ(lists.cpu.size(), 1U);
    EXPECT_EQ(lists.cpu[0].name, "new");
    EXPECT_EQ(lists.cpu[0].cpuUsage, 0);
}

TEST_F(LinuxProcessTableTest, ALostProcKeepsThePreviousLists) {
    testing::ScriptedKernel kernel;
    testing::RecordingLog log;
    ProcessService service(table, kernel, Logger(log));
    write(7, "a", 1, 1, 1'000'000);
    const TopProcessLists before = service.readTopProcesses(3);
    tree.remove("proc");
    EXPECT_EQ(service.readTopProcesses(3).memory, before.memory);
    EXPECT_EQ(log.lines().size(), 2U);
    EXPECT_EQ(log.lines().at(0).second, "Failed to get process list");
}

TEST(LinuxProcessTableLarge, TenThousandProcessesAreAllMeasured) {
    constexpr std::int32_t count = 10'000;
    // In memory: a disk would take a while to make that many folders.
    const tarnwick::testing::TemporaryFolder folder;
    const auto write = [&folder](std::int32_t identifier, std::uint64_t ticks,
                                 std::uint64_t pages) {
        const std::filesystem::path process = folder / "proc" / std::to_string(identifier);
        std::filesystem::create_directories(process);
        std::ofstream(process / "stat") << statLine(identifier, "p", ticks, 0, pages);
    };
    for (std::int32_t identifier = 1; identifier <= count; ++identifier) {
        write(identifier, 0, 1'000'000 + static_cast<std::uint64_t>(identifier % 5000));
    }
    testing::ScriptedKernel kernel;
    LinuxProcessTable table(folder.path(), {.dataFolders = {}, .localeSuffixes = {}});
    ProcessService service(table, kernel);
    const TopProcessLists first = service.readTopProcesses(3);
    ASSERT_EQ(first.memory.size(), 3U);
    EXPECT_EQ(first.memory[0].id, 4999);
    EXPECT_EQ(first.memory[1].id, 9999);
    EXPECT_EQ(first.memory[2].id, 4998);
    EXPECT_EQ(first.cpu[0].id, 1);
    write(count, 1'000'000'000 / tick, 1);
    write(1234, 2'000'000'000 / tick, 1);
    kernel.advance(10);
    const TopProcessLists second = service.readTopProcesses(count + 1);
    ASSERT_EQ(second.cpu.size(), static_cast<std::size_t>(count));
    EXPECT_EQ(second.cpu[0].id, 1234);
    EXPECT_DOUBLE_EQ(second.cpu[0].cpuUsage, 20);
    EXPECT_EQ(second.cpu[1].id, count);
    EXPECT_EQ(second.cpu[2].id, 1);
}

}  // namespace
}  // namespace tarnwick::platform
