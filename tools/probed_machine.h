// SPDX-License-Identifier: MIT
// The samplers on one machine, live or recorded.
#pragma once

#include "tools/machine_sample.h"
#include "tools/probe_options.h"

namespace tarnwick::probe {

/// Remembers the counters between two readings, which rates need; the first reading has no rates.
/// Never destroyed: a source that hangs may still use it when the program ends.
class ProbedMachine {
 public:
    explicit ProbedMachine(const Options& options);
    ~ProbedMachine() = delete;

    /// Requires: not after end().
    MachineSample read();

    /// Ends the threads that read. One that hangs is left behind after a moment.
    void end();

 private:
    struct Samplers;
    Samplers& samplers_;
    const int limit_;
};

}  // namespace tarnwick::probe
