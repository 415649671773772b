// The samplers on one machine, live or recorded.
#pragma once

#include <memory>

#include "tools/machine_sample.h"
#include "tools/probe_options.h"

namespace tarnwick::probe {

/// Remembers the counters between two readings, which rates need; the first reading has no rates.
class ProbedMachine {
 public:
    explicit ProbedMachine(const Options& options);
    ~ProbedMachine();

    MachineSample read();

 private:
    struct Samplers;
    std::unique_ptr<Samplers> samplers_;
    const int limit_;
};

}  // namespace tarnwick::probe
