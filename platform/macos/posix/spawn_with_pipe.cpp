// SPDX-License-Identifier: MIT
#include "platform/macos/posix/spawn_with_pipe.h"

#include <fcntl.h>
#include <optional>
#include <signal.h>
#include <spawn.h>
#include <unistd.h>

extern char** environ;

namespace tarnwick::platform {
namespace {

struct Pipe {
    Descriptor reading;
    Descriptor writing;
};

std::optional<Pipe> makePipe() {
    int ends[2];
    if (::pipe(ends) != 0) {
        return std::nullopt;
    }
    Pipe pipe{Descriptor(ends[0]), Descriptor(ends[1])};
    // A separate call, because some systems cannot set the flag when they make the pipe.
    for (const int end : ends) {
        if (::fcntl(end, F_SETFD, FD_CLOEXEC) != 0) {
            return std::nullopt;
        }
    }
    if (::fcntl(ends[0], F_SETFL, O_NONBLOCK) != 0) {
        return std::nullopt;
    }
    return pipe;
}

/// What becomes of the standard descriptors in the child.
class FileActions {
 public:
    FileActions() : complete_(::posix_spawn_file_actions_init(&actions_) == 0) {}
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    ~FileActions() { ::posix_spawn_file_actions_destroy(&actions_); }

    void duplicate(int from, int to) {
        complete_ = complete_ && ::posix_spawn_file_actions_adddup2(&actions_, from, to) == 0;
    }
    void open(int descriptor, const char* path, int flags) {
        complete_ = complete_ &&
                    ::posix_spawn_file_actions_addopen(&actions_, descriptor, path, flags, 0) == 0;
    }
    bool isComplete() const { return complete_; }
    const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
    posix_spawn_file_actions_t actions_{};
    bool complete_;
};

/// Default signal settings for the child: no signal is blocked, and signals that this process may
/// ignore are not ignored.
class DefaultSignals {
 public:
    DefaultSignals() {
        ::posix_spawnattr_init(&attributes_);
        sigset_t signals;
        // These functions are macros on some systems.
        sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&attributes_, &signals);
        for (const int number : {SIGCHLD, SIGHUP, SIGINT, SIGPIPE, SIGQUIT, SIGTERM}) {
            sigaddset(&signals, number);
        }
        ::posix_spawnattr_setsigdefault(&attributes_, &signals);
        ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    DefaultSignals(const DefaultSignals&) = delete;
    DefaultSignals& operator=(const DefaultSignals&) = delete;
    ~DefaultSignals() { ::posix_spawnattr_destroy(&attributes_); }

    const posix_spawnattr_t* get() const { return &attributes_; }

 private:
    posix_spawnattr_t attributes_{};
};

std::vector<char*> argumentVector(const std::string& path,
                                  const std::vector<std::string>& arguments) {
    // The interface of the system takes pointers to bytes that it does not change.
    std::vector<char*> result{const_cast<char*>(path.c_str())};
    for (const std::string& argument : arguments) {
        result.push_back(const_cast<char*>(argument.c_str()));
    }
    result.push_back(nullptr);
    return result;
}

}  // namespace

void Descriptor::close() {
    if (isOpen()) {
        ::close(std::exchange(descriptor_, -1));
    }
}

SpawnedChild spawnWithPipe(const std::string& path, const std::vector<std::string>& arguments) {
    std::optional<Pipe> pipe = makePipe();
    if (!pipe) {
        return {};
    }
    FileActions actions;
    // The pipe comes first: if the process was started without standard descriptors, the pipe may
    // have one of their numbers.
    actions.duplicate(pipe->writing.get(), STDOUT_FILENO);
    actions.open(STDIN_FILENO, "/dev/null", O_RDONLY);
    actions.open(STDERR_FILENO, "/dev/null", O_WRONLY);
    if (!actions.isComplete()) {
        return {};
    }
    const DefaultSignals signals;
    const std::vector<char*> argv = argumentVector(path, arguments);
    pid_t id = 0;
    if (::posix_spawn(&id, path.c_str(), actions.get(), signals.get(), argv.data(), environ) != 0) {
        return {};
    }
    return {.id = id, .output = std::move(pipe->reading)};
}

}  // namespace tarnwick::platform
