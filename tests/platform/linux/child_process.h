// SPDX-License-Identifier: MIT
// Work in a process of its own, for cases that one process cannot show: other lock holders, a
// sudden end, fewer rights, limits.
#pragma once

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <gtest/gtest.h>
#include <stdexcept>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarnwick::testing {

class ChildProcess {
 public:
    /// Starts `body` in a copy of this process. Its failed expectations are printed and make its
    /// status other than 0.
    template <class Body>
    explicit ChildProcess(const Body& body) {
        std::fflush(nullptr);
        id_ = ::fork();
        if (id_ < 0) {
            throw std::runtime_error("no child process");
        }
        if (id_ == 0) {
            body();
            std::fflush(nullptr);
            ::_exit(::testing::Test::HasFailure() ? 1 : 0);
        }
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess() {
        if (id_ > 0) {
            kill();
        }
    }

    /// Its exit status; -1 when a signal ended it.
    int wait() {
        int status = 0;
        while (::waitpid(id_, &status, 0) < 0 && errno == EINTR) {
        }
        id_ = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    /// Ends the process at once, whatever it is doing.
    void kill() {
        ::kill(id_, SIGKILL);
        wait();
    }

 private:
    pid_t id_ = 0;
};

/// One byte at a time from one process to another.
class Pipe {
 public:
    Pipe() {
        if (::pipe(ends_) != 0) {
            throw std::runtime_error("no pipe");
        }
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() {
        ::close(ends_[0]);
        closeWriting();
    }

    void send(char byte = 1) { EXPECT_EQ(::write(ends_[1], &byte, 1), 1); }
    /// Waits for a byte; false if no process is left that could send one.
    bool receive() {
        char byte = 0;
        ssize_t got = 0;
        while ((got = ::read(ends_[0], &byte, 1)) < 0 && errno == EINTR) {
        }
        return got == 1;
    }
    /// Call it in a process that sends no more.
    void closeWriting() {
        if (ends_[1] >= 0) {
            ::close(ends_[1]);
            ends_[1] = -1;
        }
    }

 private:
    int ends_[2] = {-1, -1};
};

}  // namespace tarnwick::testing
