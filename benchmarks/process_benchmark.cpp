// What a pass over all processes costs beside a bare loop that opens, reads and closes the stat
// file of each.
//
//   process_benchmark [--processes=N] [--check] [options of the benchmark library]
//
// Measures with the machine's own processes and with N more (5,000 by default), under the limit of
// descriptors that the program sets for itself. The added processes do nothing and are ended at the
// end. Only figures of an optimised build mean anything.
#include <algorithm>
#include <benchmark/benchmark.h>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <vector>

#include "benchmarks/bare_process_loop.h"
#include "benchmarks/pairs.h"
#include "platform/linux/events/process_limits.h"
#include "platform/linux/kernel/linux_kernel.h"
#include "platform/linux/processes/linux_process_table.h"
#include "services/process_service.h"

namespace {

using tarnwick::ProcessService;
using tarnwick::benchmarks::BareProcessLoop;
using tarnwick::benchmarks::Pair;
using tarnwick::benchmarks::population;
using tarnwick::platform::LinuxKernel;
using tarnwick::platform::LinuxProcessTable;

constexpr int kRows = 3;
// How many files most systems let a program open by default. Some systems allow no more at all.
constexpr rlim_t kUsualDescriptors = 1024;

// Processes that sleep until they are ended, each by its own identifier.
class Sleepers {
 public:
    explicit Sleepers(int count) {
        const pid_t parent = ::getpid();
        for (int made = 0; made < count; ++made) {
            const pid_t identifier = ::fork();
            if (identifier < 0) {
                std::perror("process_benchmark: cannot make a process");
                break;
            }
            if (identifier == 0) {
                // Ends the sleeper if the benchmark is killed.
                ::prctl(PR_SET_PDEATHSIG, SIGKILL);
                while (::getppid() == parent) {
                    ::pause();
                }
                ::_exit(0);
            }
            identifiers_.push_back(identifier);
        }
    }
    Sleepers(const Sleepers&) = delete;
    Sleepers& operator=(const Sleepers&) = delete;
    ~Sleepers() {
        for (const pid_t identifier : identifiers_) {
            ::kill(identifier, SIGKILL);
        }
        for (const pid_t identifier : identifiers_) {
            ::waitpid(identifier, nullptr, 0);
        }
    }

 private:
    std::vector<pid_t> identifiers_;
};

// Adds the time per process to the output.
void countProcesses(benchmark::State& state) {
    state.counters["each"] = benchmark::Counter(
        static_cast<double>(population().size()),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void bareLoop(benchmark::State& state) {
    BareProcessLoop loop;
    for ([[maybe_unused]] const auto turn : state) {
        benchmark::DoNotOptimize(loop.read());
    }
    countProcesses(state);
}

void pass(benchmark::State& state) {
    LinuxKernel kernel;
    LinuxProcessTable table;
    ProcessService service(table, kernel);
    // The first pass opens the files; the later ones keep them open.
    service.readTopProcesses(kRows);
    for ([[maybe_unused]] const auto turn : state) {
        benchmark::DoNotOptimize(service.readTopProcesses(kRows));
    }
    countProcesses(state);
}

void passWithUsualDescriptors(benchmark::State& state) {
    rlimit own{};
    ::getrlimit(RLIMIT_NOFILE, &own);
    const rlimit usual{.rlim_cur = std::min(own.rlim_cur, kUsualDescriptors),
                       .rlim_max = own.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &usual);
    pass(state);
    ::setrlimit(RLIMIT_NOFILE, &own);
}

void firstPass(benchmark::State& state) {
    LinuxKernel kernel;
    LinuxProcessTable table;
    ProcessService service(table, kernel);
    for ([[maybe_unused]] const auto turn : state) {
        benchmark::DoNotOptimize(service.readTopProcesses(kRows));
        service.releaseCaches();
    }
    countProcesses(state);
}

// Takes "--processes=N" off the command line.
int takeProcesses(int& argc, char** argv) {
    constexpr std::string_view option = "--processes=";
    int count = 5000;
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
            std::fprintf(stderr, "process_benchmark: not a number of processes: %s\n", argv[index]);
            std::exit(2);
        }
    }
    argc = kept;
    return count;
}

// A pass that keeps files open saves enough time to pay for all that the bare loop does not do,
// above all listing the processes. If few or no files are kept, that work comes on top.
constexpr Pair kPairs[] = {
    {"process pass", pass, bareLoop, 1.0},
    {"process pass with 1024 descriptors", passWithUsualDescriptors, bareLoop, 1.25},
    {"first process pass", firstPass, bareLoop, 1.5},
};

int measure(int argc, char** argv) {
    std::printf("\n%zu processes\n", population().size());
    std::fflush(stdout);
    return tarnwick::benchmarks::runPairs(argc, argv, kPairs);
}

// Measures in a new process, because the benchmark library can run only once in each.
int measureApart(int argc, char** argv) {
    const pid_t child = ::fork();
    if (child == 0) {
        std::exit(measure(argc, argv));
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

}  // namespace

int main(int argc, char** argv) {
    const int added = takeProcesses(argc, argv);
    tarnwick::platform::raiseDescriptorLimit();
    const int few = measureApart(argc, argv);
    const Sleepers sleepers(added);
    const int many = measure(argc, argv);
    return few != 0 ? few : many;
}
