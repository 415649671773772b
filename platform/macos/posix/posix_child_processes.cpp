// SPDX-License-Identifier: MIT
#include "platform/macos/posix/posix_child_processes.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <optional>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#include "platform/macos/posix/spawn_with_pipe.h"

namespace tarnwick::platform {
namespace {

/// Seconds between two looks at a child that is to end.
constexpr double kLook = 0.002;

/// The status of a child without waiting for it; absent while it runs.
std::optional<std::int32_t> takeStatus(pid_t id) {
    int status = 0;
    pid_t answer = 0;
    while ((answer = ::waitpid(id, &status, WNOHANG)) < 0 && errno == EINTR) {
    }
    if (answer == 0) {
        return std::nullopt;
    }
    if (answer < 0) {
        return ChildProcess::kUnknownStatus;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

int milliseconds(double seconds) {
    return static_cast<int>(std::ceil(std::clamp(seconds, 0.0, 60.0) * 1000));
}

class PosixChildProcess final : public ChildProcess {
 public:
    PosixChildProcess(SpawnedChild child, ChildPatience patience,
                      std::shared_ptr<LeftChildren> left)
        : id_(child.id),
          output_(std::move(child.output)),
          patience_(patience),
          left_(std::move(left)) {}

    ~PosixChildProcess() override { terminate(); }

    void poll(double seconds) override {
        // Ignores a pipe at its end: it is always ready, so poll() would not wait.
        pollfd output{.fd = atEnd_ ? -1 : output_.get(), .events = POLLIN, .revents = 0};
        ::poll(&output, 1, milliseconds(seconds));
    }

    PipeRead read(std::span<char> buffer) override {
        const ssize_t size = ::read(output_.get(), buffer.data(), buffer.size());
        if (size > 0) {
            return {PipeRead::Outcome::data, static_cast<std::size_t>(size)};
        }
        if (size == 0) {
            atEnd_ = true;
            return {PipeRead::Outcome::end};
        }
        switch (errno) {
            case EAGAIN:
                return {PipeRead::Outcome::wouldBlock};
            case EINTR:
                return {PipeRead::Outcome::interrupted};
            default:
                return {PipeRead::Outcome::failed};
        }
    }

    std::optional<std::int32_t> status() override {
        // Asked for only once: afterwards the number may belong to another process.
        if (!status_) {
            status_ = takeStatus(id_);
        }
        return status_;
    }

    void terminate() override {
        if (status()) {
            return;
        }
        ::kill(id_, SIGTERM);
        if (endsWithin(patience_.asked)) {
            return;
        }
        ::kill(id_, SIGKILL);
        if (!endsWithin(patience_.forced)) {
            left_->add(id_);
            status_ = kUnknownStatus;
        }
    }

 private:
    bool endsWithin(double seconds) {
        using Clock = std::chrono::steady_clock;
        const auto deadline = Clock::now() + std::chrono::duration<double>(seconds);
        while (!status()) {
            if (Clock::now() >= deadline) {
                return false;
            }
            ::poll(nullptr, 0, milliseconds(kLook));
        }
        return true;
    }

    const pid_t id_;
    const Descriptor output_;
    const ChildPatience patience_;
    const std::shared_ptr<LeftChildren> left_;
    bool atEnd_ = false;
    std::optional<std::int32_t> status_;
};

}  // namespace

void LeftChildren::add(pid_t id) {
    const std::lock_guard guard(lock_);
    ids_.push_back(id);
}

std::size_t LeftChildren::reap() {
    const std::lock_guard guard(lock_);
    std::erase_if(ids_, [](pid_t id) { return takeStatus(id).has_value(); });
    return ids_.size();
}

PosixChildProcesses::PosixChildProcesses(ChildPatience patience) : patience_(patience) {}

std::unique_ptr<ChildProcess> PosixChildProcesses::spawn(
    const std::string& path, const std::vector<std::string>& arguments) {
    left_->reap();
    SpawnedChild child = spawnWithPipe(path, arguments);
    if (child.id == 0) {
        return nullptr;
    }
    return std::make_unique<PosixChildProcess>(std::move(child), patience_, left_);
}

}  // namespace tarnwick::platform
