// SPDX-License-Identifier: MIT
// A child for the tests of the process runner: child_program <what to do> [...].
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

void put(const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t size = ::write(STDOUT_FILENO, text.data() + done, text.size() - done);
        if (size > 0) {
            done += static_cast<std::size_t>(size);
        }
    }
}

/// Until a signal ends it.
[[noreturn]] void linger() {
    while (true) {
        ::pause();
    }
}

bool isNullDevice(int descriptor) {
    struct stat own {};
    struct stat null {};
    return ::fstat(descriptor, &own) == 0 && ::stat("/dev/null", &null) == 0 &&
           S_ISCHR(own.st_mode) && own.st_rdev == null.st_rdev;
}

/// The descriptors that are open, by number.
std::string openDescriptors() {
    std::string text;
    for (int descriptor = 0; descriptor < 256; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) >= 0) {
            text += std::to_string(descriptor) + ' ';
        }
    }
    return text;
}

/// Blocked or ignored signals, by number.
std::string changedSignals() {
    std::string text;
    sigset_t blocked;
    ::sigprocmask(SIG_BLOCK, nullptr, &blocked);
    for (const int number : {SIGCHLD, SIGHUP, SIGINT, SIGPIPE, SIGQUIT, SIGTERM}) {
        struct sigaction action {};
        ::sigaction(number, nullptr, &action);
        if (sigismember(&blocked, number) == 1 || action.sa_handler == SIG_IGN) {
            text += std::to_string(number) + ' ';
        }
    }
    return text;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string task = argc > 1 ? argv[1] : "";
    const std::string argument = argc > 2 ? argv[2] : "";
    if (task == "print") {
        put(argument);
        return 0;
    }
    if (task == "exit") {
        put("text");
        return std::atoi(argument.c_str());
    }
    if (task == "fill") {
        put(std::string(static_cast<std::size_t>(std::atol(argument.c_str())), 'x'));
        return 0;
    }
    if (task == "pieces") {
        for (const char c : argument) {
            put(std::string(1, c));
        }
        return 0;
    }
    if (task == "forever") {
        while (true) {
            put("x");
        }
    }
    if (task == "linger") {
        put("text");
        linger();
    }
    if (task == "ignore") {
        std::signal(SIGTERM, SIG_IGN);
        put("ready");
        linger();
    }
    if (task == "close") {
        put("text");
        ::close(STDOUT_FILENO);
        linger();
    }
    if (task == "close and succeed") {
        put("text");
        ::close(STDOUT_FILENO);
        ::usleep(50'000);
        return 0;
    }
    if (task == "raise") {
        put("text");
        std::raise(std::atoi(argument.c_str()));
    }
    if (task == "grandchild") {
        put("text");
        if (::fork() == 0) {
            // Holds the pipe open until the reader closes it, at most for a while.
            for (int i = 0; i < 3000 && ::write(STDOUT_FILENO, "x", 1) == 1; ++i) {
                ::usleep(10'000);
            }
        }
        return 0;
    }
    if (task == "environment") {
        put(openDescriptors() + "| " + changedSignals() + "| " +
            (isNullDevice(STDIN_FILENO) ? "in " : "") + (isNullDevice(STDERR_FILENO) ? "err" : ""));
        return 0;
    }
    return 100;
}
