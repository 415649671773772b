#include "platform/linux/events/detached_program.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/files/descriptors.h"
#include "tests/platform/linux/temporary_folder.h"

namespace tarnwick::platform {
namespace {

using tarnwick::testing::ChildProcess;
using tarnwick::testing::descriptorLimit;
using tarnwick::testing::TemporaryFolder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

/// Orphans become this process's own children, so that a test can wait for their end.
class Orphans {
 public:
    Orphans() {
        if (::prctl(PR_SET_CHILD_SUBREAPER, 1UL, 0UL, 0UL, 0UL) != 0) {
            throw std::runtime_error("no orphans");
        }
    }
    Orphans(const Orphans&) = delete;
    Orphans& operator=(const Orphans&) = delete;
    ~Orphans() { ::prctl(PR_SET_CHILD_SUBREAPER, 0UL, 0UL, 0UL, 0UL); }
};

bool hasChildren() {
    return ::waitpid(-1, nullptr, WNOHANG) >= 0 || errno != ECHILD;
}

class Detached : public ::testing::Test {
 protected:
    /// What a shell's `script` prints when it is started with everything else as in `program`.
    std::string outputOf(const std::string& script, DetachedProgram program = {}) {
        const Orphans orphans;
        const std::string file = (folder_ / "output").native();
        program.command = {"sh", "-c", "(" + script + ") > " + file};
        program.environment.emplace_back("PATH=/usr/local/bin:/usr/bin:/bin");
        const DetachedStart start = startDetached(program);
        EXPECT_GT(start.id, 0) << start.error;
        int status = -1;
        EXPECT_EQ(::waitpid(start.id, &status, 0), start.id);
        EXPECT_EQ(status, 0);
        id_ = start.id;
        std::ifstream stream(file);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    std::string file(const char* name, const std::string& text) {
        const std::string path = (folder_ / name).native();
        std::ofstream(path) << text;
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    TemporaryFolder folder_;
    pid_t id_ = 0;
};

TEST_F(Detached, IsTheChildOfNobodyHere) {
    ChildProcess child([] {
        EXPECT_GT(startDetached({.command = {"/bin/sleep", "0"}}).id, 0);
        EXPECT_FALSE(hasChildren());
    });
    EXPECT_EQ(child.wait(), 0);
}

TEST_F(Detached, OutlivesThisProgram) {
    const Orphans orphans;
    // It reads its one line after the process that started it has ended.
    const std::string fifo = (folder_ / "fifo").native();
    const std::string output = (folder_ / "output").native();
    ChildProcess child([&] {
        const DetachedProgram program{.command = {"/bin/sh", "-c",
                                                  "mkfifo " + fifo + " && read line < " + fifo +
                                                      " && echo $line > " + output},
                                      .environment = {"PATH=/usr/bin:/bin"}};
        EXPECT_GT(startDetached(program).id, 0);
    });
    EXPECT_EQ(child.wait(), 0);
    while (!std::filesystem::exists(fifo)) {
        ::usleep(1000);
    }
    std::ofstream(fifo) << "still here\n";
    int status = -1;
    EXPECT_GT(::waitpid(-1, &status, 0), 0);
    EXPECT_EQ(status, 0);
    std::ifstream stream(output);
    std::string line;
    std::getline(stream, line);
    EXPECT_EQ(line, "still here");
}

TEST_F(Detached, LeadsASessionOfItsOwn) {
    const std::string output = outputOf("cut -d ' ' -f 5-7 /proc/$$/stat");
    const std::string id = std::to_string(id_);
    EXPECT_EQ(output, id + ' ' + id + " 0\n");
}

TEST_F(Detached, HasTheNullDeviceAndNoFileOfThisProgram) {
    int inherited[2];
    ASSERT_EQ(::pipe(inherited), 0);
    EXPECT_EQ(outputOf("for each in /proc/$$/fd/*; do readlink $each; done"),
              "/dev/null\n/dev/null\n/dev/null\n");
    ::close(inherited[0]);
    ::close(inherited[1]);
}

TEST_F(Detached, StartsAlsoWhereThisProgramLacksItsStandardFiles) {
    ChildProcess child([this] {
        for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            ::close(standard);
        }
        EXPECT_EQ(outputOf("for each in /proc/$$/fd/*; do readlink $each; done"),
                  "/dev/null\n/dev/null\n/dev/null\n");
    });
    EXPECT_EQ(child.wait(), 0);
}

TEST_F(Detached, HasTheSignalsOfAnOrdinaryProgram) {
    ChildProcess child([this] {
        sigset_t signals;
        ::sigemptyset(&signals);
        ::sigaddset(&signals, SIGTERM);
        ::sigaddset(&signals, SIGUSR1);
        ::sigprocmask(SIG_BLOCK, &signals, nullptr);
        ::signal(SIGHUP, SIG_IGN);
        ::signal(SIGPIPE, SIG_IGN);
        EXPECT_EQ(outputOf("grep -E '^Sig(Blk|Ign)' /proc/$$/status"),
                  "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n");
    });
    EXPECT_EQ(child.wait(), 0);
}

TEST_F(Detached, HasTheLimitOfFilesThatItIsToHave) {
    EXPECT_EQ(outputOf("ulimit -n", {.descriptorLimit = 100}), "100\n");
    EXPECT_EQ(outputOf("ulimit -n"), std::to_string(descriptorLimit().rlim_cur) + '\n');
    ChildProcess child([this] {
        tarnwick::testing::limitDescriptors(64);
        const auto hard = descriptorLimit().rlim_max;
        EXPECT_EQ(outputOf("ulimit -Hn", {.descriptorLimit = 50}), std::to_string(hard) + '\n');
    });
    EXPECT_EQ(child.wait(), 0);
}

TEST_F(Detached, HasTheEnvironmentThatItIsToHave) {
    ::setenv("TARNWICK_TEST_OF_OURS", "1", 1);
    EXPECT_EQ(
        outputOf("tr '\\0' '\\n' < /proc/$$/environ", {.environment = {"A=1", "B=two words"}}),
        "A=1\nB=two words\nPATH=/usr/local/bin:/usr/bin:/bin\n");
    ::unsetenv("TARNWICK_TEST_OF_OURS");
}

TEST_F(Detached, RunsInItsFolderOrElseInThisOne) {
    EXPECT_EQ(outputOf("readlink /proc/$$/cwd", {.folder = folder_.path()}),
              folder_.path().native() + '\n');
    const std::string own = std::filesystem::current_path().native() + '\n';
    EXPECT_EQ(outputOf("readlink /proc/$$/cwd"), own);
    EXPECT_EQ(outputOf("readlink /proc/$$/cwd", {.folder = (folder_ / "missing").native()}), own);
}

TEST_F(Detached, IsFoundInThePathOfItsEnvironment) {
    file("monitor", "#!/bin/sh\n");
    const Orphans orphans;
    const DetachedStart start = startDetached(
        {.command = {"monitor"}, .environment = {"PATH=/missing:" + folder_.path().native()}});
    ASSERT_GT(start.id, 0);
    EXPECT_EQ(::waitpid(start.id, nullptr, 0), start.id);
    EXPECT_EQ(startDetached({.command = {"monitor"}, .environment = {"PATH=/missing"}}).id, 0);
}

TEST_F(Detached, ThatCannotStartSaysWhyAndLeavesNothingBehind) {
    ChildProcess child([this] {
        const Orphans orphans;
        const auto expectError = [](const std::vector<std::string>& command, int error) {
            const DetachedStart start = startDetached({.command = command});
            EXPECT_EQ(start.id, 0);
            EXPECT_EQ(start.error, error);
        };
        const std::size_t before = tarnwick::testing::openDescriptors();
        expectError({}, ENOENT);
        expectError({(folder_ / "missing").native()}, ENOENT);
        expectError({file("no_program", "no program")}, ENOEXEC);
        expectError({file("no_interpreter", "#!/missing\n")}, ENOENT);
        // The process that failed has become this one's child, and ends.
        while (::waitpid(-1, nullptr, 0) > 0) {
        }
        EXPECT_EQ(tarnwick::testing::openDescriptors(), before);
    });
    EXPECT_EQ(child.wait(), 0);
}

TEST(EnvironmentForOthers, IsTheOneOfTheStartWithTheChanges) {
    const std::vector<std::string> own = {"A=1", "B=2", "EMPTY=", "odd"};
    EXPECT_THAT(environmentForOthers(own, {}), ElementsAre("A=1", "B=2", "EMPTY=", "odd"));
    const std::vector<std::string> changes = {"A=3", "C=4"};
    EXPECT_THAT(environmentForOthers(own, changes),
                UnorderedElementsAre("A=3", "B=2", "C=4", "EMPTY=", "odd"));
}

TEST(EnvironmentForOthers, TellsNothingOfThisProgramsOwnStart) {
    const std::vector<std::string> own = {"DESKTOP_STARTUP_ID=a",
                                          "XDG_ACTIVATION_TOKEN=b",
                                          "GIO_LAUNCHED_DESKTOP_FILE=c",
                                          "GIO_LAUNCHED_DESKTOP_FILE_PID=1",
                                          "INVOCATION_ID=d",
                                          "JOURNAL_STREAM=e",
                                          "NOTIFY_SOCKET=f",
                                          "MANAGERPID=2",
                                          "SYSTEMD_EXEC_PID=3",
                                          "LISTEN_FDS=4",
                                          "LISTEN_FDNAMES=g",
                                          "LISTEN_PID=5"};
    EXPECT_THAT(environmentForOthers(own, {}), IsEmpty());
    const std::vector<std::string> changes = {"DESKTOP_STARTUP_ID=new"};
    EXPECT_THAT(environmentForOthers(own, changes), ElementsAre("DESKTOP_STARTUP_ID=new"));
}

TEST(EnvironmentValue, IsThatOfTheWholeName) {
    const std::vector<std::string> environment = {"PATHS=x", "PATH=/bin", "EMPTY=", "NONE"};
    EXPECT_STREQ(environmentValue(environment, "PATH"), "/bin");
    EXPECT_STREQ(environmentValue(environment, "EMPTY"), "");
    EXPECT_EQ(environmentValue(environment, "NONE"), nullptr);
    EXPECT_EQ(environmentValue(environment, "PA"), nullptr);
}

TEST(CurrentEnvironment, IsThatOfTheProgram) {
    ::setenv("TARNWICK_TEST_OF_OURS", "here", 1);
    const std::vector<std::string> environment = currentEnvironment();
    EXPECT_STREQ(environmentValue(environment, "TARNWICK_TEST_OF_OURS"), "here");
    ::unsetenv("TARNWICK_TEST_OF_OURS");
}

}  // namespace
}  // namespace tarnwick::platform
