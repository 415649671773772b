// Work beside the floor it stands on: the system calls that it cannot do without.
#pragma once

#include <benchmark/benchmark.h>
#include <span>

namespace tarnwick::benchmarks {

struct Pair {
    const char* name;
    void (*work)(benchmark::State&);
    void (*floor)(benchmark::State&);
    /// Greatest ratio of work to floor.
    double budget;
    /// Most time that the work may take of its thread's processor, milliseconds; 0 where the ratio
    /// alone counts. Judged like the ratio, and true of machines like those that people sit at.
    double milliseconds = 0;
};

/// Runs all pairs with the options of the benchmark library, in an order that is mixed anew for
/// each repetition, and prints the ratios of the medians of processor time. Gives the exit status:
/// with --check among the options other than 0 when anything is above its budget.
int runPairs(int argc, char** argv, std::span<const Pair> pairs);

}  // namespace tarnwick::benchmarks
