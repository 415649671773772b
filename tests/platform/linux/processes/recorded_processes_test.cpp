// SPDX-License-Identifier: MIT
// The process lists of all recorded machines.
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <ostream>
#include <string>
#include <unistd.h>
#include <vector>

#include "platform/linux/processes/linux_process_table.h"
#include "platform/testing/scripted_kernel.h"
#include "services/process_service.h"
#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

/// A row of a list of a recorded machine: identifier, name, resident memory in pages.
struct Row {
    std::int32_t id = 0;
    std::string name;
    std::uint64_t pages = 0;

    bool operator==(const Row&) const = default;
};

void PrintTo(const Row& row, std::ostream* stream) {
    *stream << row.id << " " << row.name << " " << row.pages;
}

std::vector<Row> rowsOf(const std::vector<AppProcessInfo>& processes) {
    const auto pageSize = static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
    std::vector<Row> rows;
    for (const AppProcessInfo& process : processes) {
        rows.push_back({process.id, process.name, process.memoryUsage / pageSize});
    }
    return rows;
}

/// The user of each machine speaks German.
ApplicationSources sources() {
    return {.dataFolders = {"/home/deck/.local/share", "/home/kim/.local/share", "/usr/share",
                            "/var/lib/flatpak/exports/share", "/var/lib/snapd/desktop"},
            .localeSuffixes = {"de_DE", "de"}};
}

struct Recorded {
    std::string machine;
    /// The three with most memory.
    std::vector<Row> memory;
    /// Of all that are worth a row.
    std::size_t count = 0;
};

class RecordedProcesses : public ::testing::TestWithParam<Recorded> {};

TEST_P(RecordedProcesses, AreListedAndNamed) {
    const Recorded& recorded = GetParam();
    testing::ScriptedKernel kernel;
    LinuxProcessTable table(testing::recordedMachine(recorded.machine), sources());
    ProcessService service(table, kernel);
    EXPECT_EQ(rowsOf(service.readTopProcesses(3).memory), recorded.memory);
    EXPECT_EQ(service.readTopProcesses(std::numeric_limits<int>::max()).memory.size(),
              recorded.count);
}

INSTANTIATE_TEST_SUITE_P(
    Machines, RecordedProcesses,
    ::testing::Values(
        Recorded{"laptop",
                 {{2301, "Firefox-Webbrowser", 131'072},
                  {2410, "Firefox-Webbrowser", 97'280},
                  {1811, "gnome-shell", 88'400}},
                 8},
        Recorded{
            "workstation",
            {{2200, "Blender", 1'048'576}, {4410, "cc1plus", 98'304}, {4420, "Code - OSS", 65'536}},
            5},
        Recorded{"developer",
                 {{2300, "asteroids.x86_64", 400'000},
                  {2150, "cc1plus", 90'000},
                  {2206, "Launcher", 60'000}},
                 26},
        Recorded{"handheld",
                 {{1502, "Dungeon of Doom", 1'310'720},
                  {900, "gamescope", 45'056},
                  {1, "systemd", 3'100}},
                 3},
        Recorded{
            "container-host",
            {{31'055, "java", 786'432}, {1210, "containerd", 24'576}, {20'400, "postgres", 9'000}},
            9},
        Recorded{"virtual-machine",
                 {{844, "python3.11", 30'000}, {1, "systemd", 2'900}, {611, "sshd", 2'100}},
                 4},
        Recorded{"two-batteries",
                 {{1400, "plasmashell", 61'440}, {1750, "Kate", 33'000}, {1801, "Konsole", 29'000}},
                 5},
        Recorded{"server",
                 {{40'110, "qemu-system-x86", 16'777'216},
                  {40'207, "CPU 0/KVM", 8'388'608},
                  {40'304, "qemu-system-x86", 4'194'304}},
                 5},
        Recorded{"old-kernel", {{3402, "firefox-bin", 21'000}, {2981, "X", 9'200}}, 2},
        Recorded{"damaged", {}, 0}),
    [](const auto& instance) {
        std::string name = instance.param.machine;
        std::erase(name, '-');
        return name;
    });

TEST(RecordedLaptop, ItsProcessesHaveTheNamesThatAPersonKnows) {
    LinuxProcessTable table(testing::recordedMachine("laptop"), sources());
    testing::ScriptedKernel kernel;
    ProcessService service(table, kernel);
    std::vector<std::string> names;
    for (const AppProcessInfo& process : service.readTopProcesses(100).cpu) {
        names.push_back(process.name);
    }
    // Nothing is known of the executables of systemd and (sd-pam), which belong to the superuser.
    EXPECT_THAT(names,
                ::testing::ElementsAre("systemd", "(sd-pam)", "gnome-shell", "Firefox-Webbrowser",
                                       "Firefox-Webbrowser", "Karten", "bash", "Erinnerungen"));
}

TEST(RecordedDeveloper, ProcessesAreNamedAfterWhatTheyRun) {
    LinuxProcessTable table(testing::recordedMachine("developer"), sources());
    testing::ScriptedKernel kernel;
    ProcessService service(table, kernel);
    std::map<std::int32_t, std::string> names;
    for (const AppProcessInfo& process : service.readTopProcesses(100).cpu) {
        names[process.id] = process.name;
    }
    const std::map<std::int32_t, std::string> expected = {
        {1, "systemd"},
        // A unit of the system with the terminal's name.
        {700, "term-server"},
        {2100, "Terminal"},
        {2110, "bash"},
        {2149, "x86_64-linux-gnu-g++-13"},
        {2150, "cc1plus"},
        // The script that starts the launcher, the launcher, its helper, the game.
        {2200, "dash"},
        {2205, "Launcher"},
        {2206, "Launcher"},
        {2300, "asteroids.x86_64"},
        // The sandbox around an application.
        {2400, "bwrap"},
        {2401, "bwrap"},
        {2402, "xdg-dbus-proxy"},
        {2405, "bwrap"},
        {2406, "bash"},
        {2410, "Chat"},
        {2420, "Chat"},
        // Entries in folders of their own.
        {2500, "Haushaltsbuch"},
        {2600, "Chess Club"},
        {2700, "renderer"},
        // Before and after an update.
        {2800, "Editor"},
        {2810, "Editor"},
        {2900, "Vault"},
        // A terminal written in Python, and a program in Python that runs in it.
        {2950, "Snake Terminal"},
        {2951, "bash"},
        {2952, "python3.11"},
    };
    EXPECT_EQ(names, expected);
}

TEST(RecordedLaptop, ABusyProcessHasItsShareOfTheEightProcessors) {
    const testing::MachineTree tree("laptop");
    LinuxProcessTable table(tree.root(), sources());
    testing::ScriptedKernel kernel;
    ProcessService service(table, kernel);
    service.readTopProcesses(3);
    // The browser's second process used two of four seconds.
    std::string line = testing::recordedFile("laptop", "proc/2410/stat");
    const std::string before = " 80411 ";
    const auto ticks = 80'411 + 2 * ::sysconf(_SC_CLK_TCK);
    line.replace(line.find(before), before.size(), " " + std::to_string(ticks) + " ");
    tree.write("proc/2410/stat", line);
    kernel.advance(4);
    const auto rows = service.readTopProcesses(3).cpu;
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].id, 2410);
    EXPECT_DOUBLE_EQ(rows[0].cpuUsage, 6.25);
    EXPECT_EQ(rows[1].cpuUsage, 0);
}

}  // namespace
}  // namespace tarnwick::platform
