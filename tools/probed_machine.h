// SPDX-License-Identifier: MIT
// The samplers on one machine.
#pragma once

#include <optional>
#include <string>

#include "tools/machine_sample.h"
#include "tools/probe_options.h"
#include "tools/probe_system.h"
#include "tools/threshold_file.h"

namespace tarnwick::probe {

/// Remembers the counters between two readings, which rates need. In the first reading all shares
/// of the processors are unknown, and there are no rates.
/// Never destroyed: a source that hangs may still use it when the program ends.
class ProbedMachine {
 public:
    ProbedMachine(Sources sources, const Options& options);
    ~ProbedMachine() = delete;

    /// Requires: not after end().
    MachineSample read();

    /// The same for these; absent if the file system does not answer.
    std::optional<ThresholdReading> readThresholds(const std::string& file);

    /// Ends the threads that read. One that hangs is left behind after a moment.
    void end();

 private:
    struct Samplers;
    Samplers& samplers_;
    const int limit_;
    /// Whether applications are put together.
    const bool hasApplications_;
    bool isFirst_ = true;
};

}  // namespace tarnwick::probe
