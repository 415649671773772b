// SPDX-License-Identifier: MIT
#include "platform/macos/posix/posix_child_processes.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include "tests/platform/linux/child_process.h"
#include "tests/platform/macos/posix/real_children.h"

namespace tarnwick::platform {
namespace {

class PosixChild : public testing::RealChildren {
 protected:
    std::unique_ptr<ChildProcess> start(std::vector<std::string> arguments) {
        auto child = processes.spawn(program(), arguments);
        EXPECT_NE(child, nullptr);
        return child;
    }
    /// Reads until the output ends or there are `size` bytes.
    static std::string readFrom(ChildProcess& child, std::size_t size = 100'000) {
        std::string text;
        std::array<char, 64> buffer{};
        while (text.size() < size) {
            child.poll(0.02);
            const PipeRead read = child.read(buffer);
            if (read.outcome == PipeRead::Outcome::end) {
                break;
            }
            EXPECT_NE(read.outcome, PipeRead::Outcome::failed);
            text.append(buffer.data(), read.size);
        }
        return text;
    }
    /// What the child says of its descriptors, signals and standard descriptors when all is well.
    static std::string expectedEnvironment() {
        std::string text = "0 1 2 ";
        for (int descriptor = 3; descriptor < 256; ++descriptor) {
            // Descriptors that this process inherited from its parent.
            const int flags = ::fcntl(descriptor, F_GETFD);
            if (flags >= 0 && (flags & FD_CLOEXEC) == 0) {
                text += std::to_string(descriptor) + ' ';
            }
        }
        return text + "| | in err";
    }
    static std::int32_t waitFor(ChildProcess& child) {
        while (!child.status()) {
            child.poll(0.005);
        }
        return *child.status();
    }
};

TEST_F(PosixChild, HasTheStatusThatItEndedWith) {
    for (const int status : {0, 3, 255}) {
        const auto child = start({"exit", std::to_string(status)});
        EXPECT_EQ(readFrom(*child), "text");
        EXPECT_EQ(waitFor(*child), status);
        EXPECT_EQ(child->status(), status);
    }
    const auto child = start({"raise", std::to_string(SIGTERM)});
    EXPECT_EQ(waitFor(*child), -SIGTERM);
}

TEST_F(PosixChild, HasNoStatusWhileItRuns) {
    const auto child = start({"linger"});
    EXPECT_EQ(readFrom(*child, 4), "text");
    EXPECT_EQ(child->status(), std::nullopt);
}

TEST_F(PosixChild, IsReadWithoutWaiting) {
    const auto child = start({"linger"});
    readFrom(*child, 4);
    std::array<char, 4> buffer{};
    EXPECT_EQ(child->read(buffer).outcome, PipeRead::Outcome::wouldBlock);
}

TEST_F(PosixChild, SeesTheNullDeviceAndItsOutputOnly) {
    const int own = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(readFrom(*start({"environment"})), expectedEnvironment());
    ::close(own);
}

TEST_F(PosixChild, HasItsStandardDescriptorsAlsoWhereThisProcessLacksSome) {
    for (int missing = 1; missing < 8; ++missing) {
        tarnwick::testing::ChildProcess bare([&] {
            const std::string expected = expectedEnvironment();
            for (int descriptor = 0; descriptor < 3; ++descriptor) {
                if ((missing >> descriptor & 1) != 0) {
                    ::close(descriptor);
                }
            }
            EXPECT_EQ(readFrom(*start({"environment"})), expected);
        });
        EXPECT_EQ(bare.wait(), 0) << missing;
    }
}

TEST_F(PosixChild, IsNotStartedWhenThereAreNoDescriptorsLeft) {
    tarnwick::testing::ChildProcess full([&] {
        const std::size_t before = testing::openDescriptors();
        rlimit limit{};
        ::getrlimit(RLIMIT_NOFILE, &limit);
        rlimit none = limit;
        none.rlim_cur = 0;
        ::setrlimit(RLIMIT_NOFILE, &none);
        EXPECT_EQ(processes.spawn(program(), {"print", "x"}), nullptr);
        ::setrlimit(RLIMIT_NOFILE, &limit);
        EXPECT_EQ(testing::openDescriptors(), before);
    });
    EXPECT_EQ(full.wait(), 0);
}

TEST_F(PosixChild, StartsWithTheSignalsOfAnOrdinaryProgram) {
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    sigaddset(&blocked, SIGINT);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const auto pipeBefore = std::signal(SIGPIPE, SIG_IGN);
    EXPECT_EQ(readFrom(*start({"environment"})), expectedEnvironment());
    std::signal(SIGPIPE, pipeBefore);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

TEST_F(PosixChild, IsAskedToEndFirst) {
    const auto child = start({"linger"});
    readFrom(*child, 4);
    child->terminate();
    EXPECT_EQ(child->status(), -SIGTERM);
}

TEST_F(PosixChild, IsEndedByForceWhenItDoesNotListen) {
    const auto child = start({"ignore"});
    readFrom(*child, 5);
    child->terminate();
    EXPECT_EQ(child->status(), -SIGKILL);
    child->terminate();
    EXPECT_EQ(child->status(), -SIGKILL);
}

TEST_F(PosixChild, IsEndedWithItsObject) {
    for (const char* task : {"linger", "ignore", "close", "forever"}) {
        const auto child = start({task});
        readFrom(*child, 4);
    }
}

TEST_F(PosixChild, IsWaitedForAfterTheEndOfItsOutput) {
    const auto child = start({"close"});
    EXPECT_EQ(readFrom(*child), "text");
    // A wait that came back at once would keep the processor busy.
    const auto begin = std::chrono::steady_clock::now();
    child->poll(0.02);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(19));
    EXPECT_EQ(child->status(), std::nullopt);
}

TEST_F(PosixChild, WhoseStatusSomebodyElseTookHasAnUnknownOne) {
    const auto child = start({"exit", "0"});
    readFrom(*child);
    EXPECT_GT(::waitpid(-1, nullptr, 0), 0);
    EXPECT_EQ(child->status(), ChildProcess::kUnknownStatus);
}

TEST_F(PosixChild, OfAProcessThatIgnoresItsChildrenHasAnUnknownStatus) {
    const auto before = std::signal(SIGCHLD, SIG_IGN);
    {
        const auto child = start({"exit", "0"});
        readFrom(*child);
        EXPECT_EQ(waitFor(*child), ChildProcess::kUnknownStatus);
    }
    std::signal(SIGCHLD, before);
}

TEST_F(PosixChild, ThatCannotBeWaitedForIsTakenLater) {
    PosixChildProcesses impatient({.asked = 0, .forced = 0});
    // How soon a child that was ended is gone is up to the system; one of them is still there.
    for (int attempt = 0; attempt < 200 && impatient.leftChildren() == 0; ++attempt) {
        const auto child = impatient.spawn(program(), {"ignore"});
        ASSERT_NE(child, nullptr);
        readFrom(*child, 5);
        child->terminate();
        EXPECT_TRUE(child->status().has_value());
    }
    while (impatient.leftChildren() > 0) {
        ::usleep(1000);
    }
}

}  // namespace
}  // namespace tarnwick::platform
