// SPDX-License-Identifier: MIT
// Compares work with its floor: the system calls that the work cannot do without.
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
    /// Greatest processor time of the work in its thread, milliseconds; 0 if only the ratio counts.
    /// Checked like the ratio. The figure holds for machines of the kind that people sit at.
    double milliseconds = 0;
    /// Both sides have threads that work for them, whose time counts.
    bool isWholeProcess = false;
};

/// Runs all pairs with the options of the benchmark library, in an order that is shuffled for each
/// repetition, and prints the ratios of the medians of processor time. Returns the exit status:
/// with --check among the options it is not 0 if anything is above its budget.
int runPairs(int argc, char** argv, std::span<const Pair> pairs);

}  // namespace tarnwick::benchmarks
