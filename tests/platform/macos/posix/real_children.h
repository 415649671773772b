// SPDX-License-Identifier: MIT
// Real child processes, and checks that they leave nothing behind.
#pragma once

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <sys/wait.h>
#include <vector>

#include "platform/macos/posix/posix_child_processes.h"

namespace tarnwick::platform::testing {

/// Open descriptors of this process, plus the one that the counting needs.
inline std::size_t openDescriptors() {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/dev/fd")) {
        ++count;
    }
    return count;
}

/// Whether this process has a child of any kind, a zombie included.
inline bool hasChild() {
    siginfo_t info{};
    return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

/// The fate of the children that a test started.
struct Watched {
    int started = 0;
    std::size_t bytes = 0;
    bool ended = false;
    std::optional<std::int32_t> status{};
};

/// Passes everything on to real children and watches them.
class WatchedChildProcesses final : public ChildProcesses {
 public:
    explicit WatchedChildProcesses(ChildProcesses& target) : target_(target) {}

    std::unique_ptr<ChildProcess> spawn(const std::string& path,
                                        const std::vector<std::string>& arguments) override {
        std::unique_ptr<ChildProcess> child = target_.spawn(path, arguments);
        if (!child) {
            return nullptr;
        }
        ++watched.started;
        return std::make_unique<Child>(watched, std::move(child));
    }

    Watched watched;

 private:
    class Child final : public ChildProcess {
     public:
        Child(Watched& watched, std::unique_ptr<ChildProcess> target)
            : watched_(watched), target_(std::move(target)) {}

        void poll(double seconds) override { target_->poll(seconds); }
        PipeRead read(std::span<char> buffer) override {
            const PipeRead read = target_->read(buffer);
            watched_.bytes += read.size;
            watched_.ended = watched_.ended || read.outcome == PipeRead::Outcome::end;
            return read;
        }
        std::optional<std::int32_t> status() override {
            return watched_.status = target_->status();
        }
        void terminate() override {
            target_->terminate();
            watched_.status = target_->status();
        }

     private:
        Watched& watched_;
        std::unique_ptr<ChildProcess> target_;
    };

    ChildProcesses& target_;
};

/// Checks at the end of each test that no child and no descriptor is left.
class RealChildren : public ::testing::Test {
 protected:
    void SetUp() override {
        ASSERT_FALSE(hasChild());
        descriptors_ = openDescriptors();
    }
    void TearDown() override {
        EXPECT_FALSE(hasChild());
        EXPECT_EQ(openDescriptors(), descriptors_);
    }

    static std::string program() { return TARNWICK_CHILD_PROGRAM; }

    PosixChildProcesses processes;

 private:
    std::size_t descriptors_ = 0;
};

}  // namespace tarnwick::platform::testing
