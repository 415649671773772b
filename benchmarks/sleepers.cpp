// SPDX-License-Identifier: MIT
#include "benchmarks/sleepers.h"

#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string_view>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace tarnwick::benchmarks {

Sleepers::Sleepers(int count, int descriptors) {
    const pid_t parent = ::getpid();
    for (int made = 0; made < count; ++made) {
        const pid_t identifier = ::fork();
        if (identifier < 0) {
            std::perror("cannot make a process");
            break;
        }
        if (identifier == 0) {
            // Ends the sleeper if the benchmark is killed.
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            for (int opened = 0; opened < descriptors; ++opened) {
                if (::open("/dev/null", O_RDONLY) < 0) {
                    break;
                }
            }
            while (::getppid() == parent) {
                ::pause();
            }
            ::_exit(0);
        }
        identifiers_.push_back(identifier);
    }
}

Sleepers::~Sleepers() {
    for (const pid_t identifier : identifiers_) {
        ::kill(identifier, SIGKILL);
    }
    for (const pid_t identifier : identifiers_) {
        ::waitpid(identifier, nullptr, 0);
    }
}

int takeProcesses(int& argc, char** argv, int usual) {
    constexpr std::string_view option = "--processes=";
    int count = usual;
    int kept = 1;
    for (int index = 1; index < argc; ++index) {
        const std::string_view argument = argv[index];
        if (!argument.starts_with(option)) {
            argv[kept++] = argv[index];
            continue;
        }
        const char* const end = argument.data() + argument.size();
        const auto [rest, error] = std::from_chars(argument.data() + option.size(), end, count);
        if (error != std::errc() || rest != end || count < 0) {
            std::fprintf(stderr, "%s: not a number of processes: %s\n", argv[0], argv[index]);
            std::exit(2);
        }
    }
    argc = kept;
    return count;
}

}  // namespace tarnwick::benchmarks
