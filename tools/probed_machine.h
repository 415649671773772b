// The samplers on one machine, live or recorded.
#pragma once

#include <memory>

#include "tools/machine_sample.h"
#include "tools/probe_options.h"

namespace tarnwick::probe {

/// Keeps what rates need between two readings; the first reading has none.
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
