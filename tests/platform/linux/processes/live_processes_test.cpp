// SPDX-License-Identifier: MIT
// The process lists on the machine that runs the tests, with processes that the tests start.
#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <linux/sched.h>
#include <optional>
#include <sstream>
#include <string>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <time.h>
#include <unistd.h>
#include <vector>

#include "platform/linux/kernel/clocks.h"
#include "platform/linux/kernel/linux_kernel.h"
#include "platform/linux/processes/linux_process_table.h"
#include "platform/linux/processes/proc_pid_stat.h"
#include "services/application_name.h"
#include "services/process_service.h"
#include "tests/platform/linux/child_process.h"

namespace tarnwick::platform {
namespace {

using tarnwick::testing::Pipe;

/// A child that calls itself something and does this until it is ended.
class Child {
 public:
    template <class Body>
    Child(const char* name, const Body& body) {
        Pipe ready;
        id_ = ::fork();
        if (id_ == 0) {
            // Not to be left behind by a test program that is killed.
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            ::prctl(PR_SET_NAME, name);
            ready.send();
            body();
            ::_exit(0);
        }
        ready.closeWriting();
        EXPECT_TRUE(id_ > 0 && ready.receive());
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() { end(); }

    pid_t id() const { return id_; }
    void end() {
        if (id_ > 0) {
            ::kill(id_, SIGKILL);
            ::waitpid(id_, nullptr, 0);
            id_ = 0;
        }
    }

 private:
    pid_t id_ = 0;
};

void burn() {
    volatile bool forEver = true;
    while (forEver) {
    }
}

void waitForEver() {
    while (true) {
        ::pause();
    }
}

std::string statOf(pid_t id) {
    std::ifstream file("/proc/" + std::to_string(id) + "/stat");
    return std::string(std::istreambuf_iterator<char>(file), {});
}

/// Processor seconds of a process, as the kernel says now.
double usedSeconds(pid_t id) {
    const std::string text = statOf(id);
    const auto stat = parseProcessStat(text);
    EXPECT_TRUE(stat) << text;
    return stat ? static_cast<double>(stat->userTicks + stat->systemTicks) /
                      static_cast<double>(::sysconf(_SC_CLK_TCK))
                : 0;
}

std::optional<AppProcessInfo> rowOf(const std::vector<AppProcessInfo>& rows, pid_t id) {
    const auto found = std::ranges::find(rows, id, &AppProcessInfo::id);
    return found == rows.end() ? std::nullopt : std::optional(*found);
}

constexpr int kAll = std::numeric_limits<int>::max();

/// Processor and clock seconds on both sides of a pass.
struct Bracket {
    double usedBefore, timeBefore, usedAfter, timeAfter;
    TopProcessLists lists;
};

Bracket passAround(ProcessService& service, pid_t id) {
    Bracket bracket{};
    bracket.timeBefore = rawMonotonicSeconds();
    bracket.usedBefore = usedSeconds(id);
    bracket.lists = service.readTopProcesses(kAll);
    bracket.usedAfter = usedSeconds(id);
    bracket.timeAfter = rawMonotonicSeconds();
    return bracket;
}

TEST(LiveProcesses, AChildThatBurnsProcessorTimeHasTheShareThatTheKernelSays) {
    LinuxKernel kernel;
    LinuxProcessTable table;
    ProcessService service(table, kernel);
    const Child child("burner", burn);

    const Bracket first = passAround(service, child.id());
    while (usedSeconds(child.id()) < first.usedAfter + 0.5) {
        const timespec moment{.tv_sec = 0, .tv_nsec = 5'000'000};
        ::nanosleep(&moment, nullptr);
    }
    const Bracket second = passAround(service, child.id());

    const auto row = rowOf(second.lists.cpu, child.id());
    ASSERT_TRUE(row);
    const double processors = static_cast<double>(table.processorCount());
    const double least = (second.usedBefore - first.usedAfter) /
                         (second.timeAfter - first.timeBefore) / processors * 100;
    const double most = (second.usedAfter - first.usedBefore) /
                        (second.timeBefore - first.timeAfter) / processors * 100;
    EXPECT_GE(row->cpuUsage, least - 2);
    EXPECT_LE(row->cpuUsage, most + 2);
    RecordProperty("share", std::to_string(row->cpuUsage));
    // It did nothing else, so it is at the top or beaten by one that is busier still.
    EXPECT_GT(row->cpuUsage, 0);
}

std::string toolOutput(const std::string& command) {
    // No settings of the user.
    FILE* const pipe =
        ::popen(("LC_ALL=C HOME=/ XDG_CONFIG_HOME=/ " + command + " 2>/dev/null").c_str(), "r");
    std::string output;
    std::array<char, 4096> part;
    for (std::size_t size = 1; size > 0; output.append(part.data(), size)) {
        size = ::fread(part.data(), 1, part.size(), pipe);
    }
    ::pclose(pipe);
    return output;
}

/// The figure in the column "%CPU" of the last row that a tool printed about a process.
std::optional<double> lastShareIn(const std::string& output, pid_t id) {
    std::optional<double> share;
    std::vector<std::string> heading;
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream text(line);
        const std::vector<std::string> words(std::istream_iterator<std::string>(text), {});
        if (std::ranges::count(words, "%CPU") > 0) {
            heading = words;
        }
        const auto column = [&heading, &words](const char* name) {
            const auto found = std::ranges::find(heading, name);
            const auto index = static_cast<std::size_t>(found - heading.begin());
            return found == heading.end() || index >= words.size() ? "" : words[index];
        };
        if (column("PID") == std::to_string(id)) {
            share = std::strtod(column("%CPU").c_str(), nullptr);
        }
    }
    return share;
}

/// Processor seconds of a process by its own clock.
double clockOf(pid_t id) {
    clockid_t clock{};
    timespec used{};
    EXPECT_EQ(::clock_getcpuclockid(id, &clock), 0);
    EXPECT_EQ(::clock_gettime(clock, &used), 0);
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) / 1e9;
}

TEST(LiveProcesses, TheTimeOfAllThreadsCounts) {
    const Child child("threads", [] { std::thread(burn).join(); });
    while (clockOf(child.id()) < 0.1) {
        const timespec moment{.tv_sec = 0, .tv_nsec = 5'000'000};
        ::nanosleep(&moment, nullptr);
    }
    LinuxProcessTable table;
    std::uint64_t used = 0;
    table.forEachProcess([&](ProcessEntry& process) {
        if (process.identifier() == child.id()) {
            const auto task = process.taskInformation();
            used = task ? task->totalUser + task->totalSystem : 0;
        }
    });
    EXPECT_GE(used, 80'000'000U);
}

/// The command of a tool that looks at processes for a second; their numbers follow.
class LiveTool : public ::testing::TestWithParam<const char*> {};

TEST_P(LiveTool, SaysOfABusyAndAnIdleChildWhatTheListSays) {
    const std::string command = GetParam();
    const std::string name = command.substr(0, command.find(' '));
    if (toolOutput("command -v " + name).empty()) {
        GTEST_SKIP() << name << " is not installed";
    }
    const Child busy("busy", burn);
    const Child idle("idle", waitForEver);
    LinuxKernel kernel;
    LinuxProcessTable table;
    ProcessService service(table, kernel);
    const double outerStart = rawMonotonicSeconds();
    service.readTopProcesses(kAll);
    const double innerStart = rawMonotonicSeconds();
    const double busyBefore = clockOf(busy.id());
    const std::string output =
        toolOutput(command + " -p " + std::to_string(busy.id()) + "," + std::to_string(idle.id()));
    const double used = clockOf(busy.id()) - busyBefore;
    const double inner = rawMonotonicSeconds() - innerStart;
    const std::vector<AppProcessInfo> rows = service.readTopProcesses(kAll).cpu;
    const double outer = rawMonotonicSeconds() - outerStart;

    const auto busyShare = lastShareIn(output, busy.id());
    const auto idleShare = lastShareIn(output, idle.id());
    const auto busyRow = rowOf(rows, busy.id());
    const auto idleRow = rowOf(rows, idle.id());
    ASSERT_TRUE(busyShare && idleShare && busyRow && idleRow) << output;
    // The tools count one busy processor as 100 %.
    const double scale = static_cast<double>(table.processorCount());
    EXPECT_LE(*idleShare, 5);
    EXPECT_LE(idleRow->cpuUsage * scale, 5);
    // The tool looked for a second of the time, or for longer if the machine was busy. What the
    // child may have used in the rest counts in favour of both.
    const double tool = *busyShare / 100;
    const double list = busyRow->cpuUsage * scale / 100;
    constexpr double slack = 0.1;
    EXPECT_LE(tool, used + slack) << output;
    EXPECT_LE(tool, list * outer + slack) << output;
    EXPECT_GE(tool * outer + (outer - 1) + slack, used) << output;
    EXPECT_GE(tool * outer + (outer - 1) + slack, list * inner) << output;
    RecordProperty("tool", std::to_string(tool));
    RecordProperty("list", std::to_string(list));
}

INSTANTIATE_TEST_SUITE_P(Tools, LiveTool,
                         ::testing::Values("pidstat -u 1 1", "top -b -d 1 -n 2 -w 200"),
                         [](const auto& instance) {
                             const std::string command = instance.param;
                             return command.substr(0, command.find(' '));
                         });

TEST(LiveProcesses, ACommandWithSpacesBracketsAndALineBreakIsReadWhole) {
    const char name[] = "a (b) c\nd) R 1";
    const Child child(name, waitForEver);
    LinuxProcessTable table;
    std::string command;
    std::optional<TaskInformation> task;
    table.forEachProcess([&](ProcessEntry& process) {
        if (process.identifier() == child.id()) {
            task = process.taskInformation();
            command = process.command();
        }
    });
    EXPECT_EQ(command, name);
    ASSERT_TRUE(task);
    // The copy of a test program occupies some memory, and less than a second was used.
    EXPECT_GT(task->residentSize, 100'000U);
    EXPECT_LT(task->totalUser + task->totalSystem, 1'000'000'000U);
}

TEST(LiveProcesses, AChildIsNamedAfterItsExecutable) {
    const Child child("something else", waitForEver);
    LinuxKernel kernel;
    LinuxProcessTable table("/", {.dataFolders = {}, .localeSuffixes = {}});
    ProcessService service(table, kernel);
    const auto row = rowOf(service.readTopProcesses(kAll).memory, child.id());
    ASSERT_TRUE(row);
    EXPECT_EQ(row->name, "tests_platform_linux");
}

TEST(LiveProcesses, ThisProcessIsNotListed) {
    LinuxKernel kernel;
    LinuxProcessTable table;
    ProcessService service(table, kernel);
    const Child child("other", waitForEver);
    const auto rows = service.readTopProcesses(kAll).memory;
    EXPECT_FALSE(rowOf(rows, ::getpid()));
    EXPECT_TRUE(rowOf(rows, child.id()));
}

TEST(LiveProcesses, AProcessThatEndsDuringTheWalkIsNotMeasured) {
    Child child("brief", waitForEver);
    const pid_t id = child.id();
    LinuxProcessTable table;
    int visits = 0;
    // In the first walk its file is kept; it ends in the second.
    for (const bool endsNow : {false, true}) {
        table.forEachProcess([&](ProcessEntry& process) {
            if (process.identifier() == id) {
                ++visits;
                if (endsNow) {
                    child.end();
                }
                EXPECT_EQ(process.taskInformation().has_value(), !endsNow);
                EXPECT_EQ(process.command(), endsNow ? "" : "brief");
            }
        });
    }
    EXPECT_EQ(visits, 2);
    table.forEachProcess([id](ProcessEntry& process) { EXPECT_NE(process.identifier(), id); });
}

TEST(LiveProcesses, AProcessThatEndedUnnoticedByItsParentHasNoMemory) {
    const pid_t id = ::fork();
    if (id == 0) {
        ::_exit(0);
    }
    siginfo_t info{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(id), &info, WEXITED | WNOWAIT), 0);
    LinuxProcessTable table;
    bool isFound = false;
    table.forEachProcess([&](ProcessEntry& process) {
        if (process.identifier() == id) {
            isFound = true;
            const auto task = process.taskInformation();
            ASSERT_TRUE(task);
            EXPECT_EQ(task->residentSize, 0U);
        }
    });
    EXPECT_TRUE(isFound);
    ::waitpid(id, nullptr, 0);
}

/// Forks this process under an unused identifier; -1 if that is not allowed.
pid_t forkAs(pid_t id) {
    std::array<pid_t, 1> wanted{id};
    clone_args arguments{};
    arguments.exit_signal = SIGCHLD;
    arguments.set_tid = reinterpret_cast<std::uintptr_t>(wanted.data());
    arguments.set_tid_size = wanted.size();
    return static_cast<pid_t>(::syscall(SYS_clone3, &arguments, sizeof arguments));
}

TEST(LiveProcesses, AReusedIdentifierIsTheNewProcessThoughTheOldOnesFileWasKept) {
    LinuxProcessTable table;
    pid_t id = 0;
    std::string command;
    std::optional<TaskInformation> task;
    const auto walk = [&] {
        command.clear();
        table.forEachProcess([&](ProcessEntry& process) {
            if (process.identifier() == id) {
                task = process.taskInformation();
                command = process.command();
            }
        });
    };
    Child old("old", waitForEver);
    id = old.id();
    walk();
    EXPECT_EQ(command, "old");
    old.end();
    const pid_t reborn = forkAs(id);
    if (reborn < 0) {
        GTEST_SKIP() << "no process may choose its identifier, or another has it already";
    }
    if (reborn == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        waitForEver();
    }
    ASSERT_EQ(reborn, id);
    walk();
    EXPECT_NE(command, "old");
    EXPECT_NE(command, "");
    EXPECT_TRUE(task);
    ::kill(reborn, SIGKILL);
    ::waitpid(reborn, nullptr, 0);
}

TEST(LiveProcesses, AKernelThreadHasNoMemoryAndNoNameButItsCommand) {
    LinuxProcessTable table;
    std::int32_t thread = 0;
    table.forEachProcess([&thread](ProcessEntry& process) {
        if (process.command() == "kthreadd") {
            thread = process.identifier();
            const auto task = process.taskInformation();
            ASSERT_TRUE(task);
            EXPECT_EQ(task->residentSize, 0U);
        }
    });
    if (thread == 0) {
        GTEST_SKIP() << "a container does not show the kernel's threads";
    }
    EXPECT_EQ(applicationName(table, thread), std::nullopt);
}

TEST(LiveProcesses, AnExecutableOfAnotherUserCannotBeReadAndTheCommandStays) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only the superuser can become another user";
    }
    const Child other("not yours", waitForEver);
    const pid_t id = other.id();
    tarnwick::testing::ChildProcess child([id] {
        constexpr uid_t nobody = 65534;
        if (::setresuid(nobody, nobody, nobody) != 0) {
            std::printf("not allowed to become another user: nothing was checked\n");
            return;
        }
        LinuxKernel kernel;
        LinuxProcessTable table("/", {.dataFolders = {}, .localeSuffixes = {}});
        EXPECT_EQ(table.executablePath(id), std::nullopt);
        ProcessService service(table, kernel);
        const auto row = rowOf(service.readTopProcesses(kAll).memory, id);
        ASSERT_TRUE(row);
        EXPECT_EQ(row->name, "not yours");
    });
    EXPECT_EQ(child.wait(), 0);
}

TEST(LiveProcesses, ResidentMemoryIsWhatTheKernelSays) {
    const Child child("still", waitForEver);
    LinuxKernel kernel;
    LinuxProcessTable table;
    ProcessService service(table, kernel);
    const auto pages = [&child] {
        const std::string text = statOf(child.id());
        return parseProcessStat(text)->residentPages;
    };
    const std::uint64_t before = pages();
    const auto row = rowOf(service.readTopProcesses(kAll).memory, child.id());
    const std::uint64_t after = pages();
    ASSERT_TRUE(row);
    // It may be on its way to its sleep still, and only grows; the kernel counts in parts.
    constexpr std::uint64_t slack = 64;
    const auto pageSize = static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
    EXPECT_GE(row->memoryUsage + slack * pageSize, before * pageSize);
    EXPECT_LE(row->memoryUsage, (after + slack) * pageSize);
}

}  // namespace
}  // namespace tarnwick::platform
