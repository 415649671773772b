// SPDX-License-Identifier: MIT
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
#include <cstdio>
#include <cstdlib>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "benchmarks/bare_process_loop.h"
#include "benchmarks/pairs.h"
#include "benchmarks/sleepers.h"
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
    const int added = tarnwick::benchmarks::takeProcesses(argc, argv, 5000);
    tarnwick::platform::raiseDescriptorLimit();
    const int few = measureApart(argc, argv);
    const tarnwick::benchmarks::Sleepers sleepers(added);
    const int many = measure(argc, argv);
    return few != 0 ? few : many;
}
