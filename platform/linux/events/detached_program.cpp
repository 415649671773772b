#include "platform/linux/events/detached_program.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <string_view>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/applications/executable_file.h"

namespace tarnwick::platform {
namespace {

/// Variables of which each start has its own.
constexpr std::array<std::string_view, 12> kOfOneStart = {"DESKTOP_STARTUP_ID",
                                                          "XDG_ACTIVATION_TOKEN",
                                                          "GIO_LAUNCHED_DESKTOP_FILE",
                                                          "GIO_LAUNCHED_DESKTOP_FILE_PID",
                                                          "INVOCATION_ID",
                                                          "JOURNAL_STREAM",
                                                          "NOTIFY_SOCKET",
                                                          "MANAGERPID",
                                                          "SYSTEMD_EXEC_PID",
                                                          "LISTEN_FDS",
                                                          "LISTEN_FDNAMES",
                                                          "LISTEN_PID"};

std::string_view nameOf(std::string_view variable) {
    return variable.substr(0, variable.find('='));
}

std::vector<char*> pointers(const std::vector<std::string>& texts) {
    std::vector<char*> result;
    // The interface of the system takes pointers to bytes that it does not change.
    std::ranges::transform(texts, std::back_inserter(result),
                           [](const std::string& text) { return const_cast<char*>(text.c_str()); });
    result.push_back(nullptr);
    return result;
}

/// Everything the new process needs, made before it is: there it can ask for no memory, because
/// another thread may have held the lock of the heap when it was made.
struct Start {
    std::string file;
    std::vector<char*> arguments;
    std::vector<char*> environment;
    const char* folder;
    std::optional<rlimit> limit;
    int report;
};

void say(int report, int value) {
    // Nobody is left to tell when this fails.
    [[maybe_unused]] const ssize_t written = ::write(report, &value, sizeof value);
}

/// In the new process.
[[noreturn]] void become(const Start& start) {
    ::setsid();
    for (int number = 1; number < NSIG; ++number) {
        ::signal(number, SIG_DFL);
    }
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    if (start.limit) {
        ::setrlimit(RLIMIT_NOFILE, &*start.limit);
    }
    if (*start.folder != '\0') {
        [[maybe_unused]] const int entered = ::chdir(start.folder);
    }
    say(start.report, ::getpid());
    const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        ::dup2(null, standard);
        // Where this program had none, the device's own descriptor is one of them.
        ::fcntl(standard, F_SETFD, 0);
    }
    // Also those that this program was itself started with.
    ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    ::execve(start.file.c_str(), start.arguments.data(), start.environment.data());
    say(start.report, errno);
    ::_exit(EXIT_FAILURE);
}

/// The next word of the new process; absent when it says no more.
std::optional<int> hear(int report) {
    int value = 0;
    ssize_t got = 0;
    while ((got = ::read(report, &value, sizeof value)) < 0 && errno == EINTR) {
    }
    return got == sizeof value ? std::optional(value) : std::nullopt;
}

DetachedStart waitForStart(int report) {
    const std::optional<int> id = hear(report);
    if (!id) {
        return {.error = EAGAIN};
    }
    // The pipe ends without a word when the program takes the process over.
    const std::optional<int> error = hear(report);
    return error ? DetachedStart{.error = *error} : DetachedStart{.id = *id};
}

}  // namespace

DetachedStart startDetached(const DetachedProgram& program) {
    const char* const path = environmentValue(program.environment, "PATH");
    const std::filesystem::path file =
        program.command.empty()
            ? std::filesystem::path()
            : findExecutable(program.command.front(), path != nullptr ? path : "");
    if (file.empty()) {
        return {.error = ENOENT};
    }
    int ends[2];
    // Above the standard descriptors, which the new process fills anew.
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        return {.error = errno};
    }
    Start start{.file = file.native(),
                .arguments = pointers(program.command),
                .environment = pointers(program.environment),
                .folder = program.folder.c_str(),
                .limit = std::nullopt,
                .report = ::fcntl(ends[1], F_DUPFD_CLOEXEC, STDERR_FILENO + 1)};
    ::close(ends[1]);
    if (rlimit limit{}; program.descriptorLimit && ::getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, *program.descriptorLimit);
        start.limit = limit;
    }
    // The process in between ends at once, so that the other one becomes the child of whoever
    // takes orphans.
    const pid_t between = ::fork();
    if (between == 0) {
        const pid_t id = ::fork();
        if (id == 0) {
            become(start);
        }
        ::_exit(id > 0 ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    const int error = errno;
    ::close(start.report);
    DetachedStart result{.error = error};
    if (between > 0) {
        result = waitForStart(ends[0]);
        while (::waitpid(between, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    ::close(ends[0]);
    return result;
}

std::vector<std::string> environmentForOthers(std::span<const std::string> own,
                                              std::span<const std::string> changes) {
    std::vector<std::string> result;
    std::ranges::copy_if(own, std::back_inserter(result), [changes](const std::string& variable) {
        const std::string_view name = nameOf(variable);
        return std::ranges::find(kOfOneStart, name) == kOfOneStart.end() &&
               std::ranges::find(changes, name, [](const std::string& change) {
                   return nameOf(change);
               }) == changes.end();
    });
    result.insert(result.end(), changes.begin(), changes.end());
    return result;
}

const char* environmentValue(std::span<const std::string> environment, std::string_view name) {
    for (const std::string& variable : environment) {
        if (nameOf(variable) == name && variable.size() > name.size()) {
            return variable.c_str() + name.size() + 1;
        }
    }
    return nullptr;
}

std::vector<std::string> currentEnvironment() {
    std::vector<std::string> result;
    for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
        result.emplace_back(*variable);
    }
    return result;
}

}  // namespace tarnwick::platform
