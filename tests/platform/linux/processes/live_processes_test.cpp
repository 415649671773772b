// The process lists on the machine that runs the tests, with processes that the tests start.
#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <linux/sched.h>
#include <optional>
#include <string>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
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
