// SPDX-License-Identifier: MIT
// The output of a command that ends soon.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/child_process.h"

namespace tarnwick {

/// A command and its limits.
struct ProcessRequest {
    std::string path;
    std::vector<std::string> arguments{};
    /// Bytes of output; one more is a failure.
    std::size_t outputLimit = 0;
    /// Seconds until the command is ended.
    double timeout = 0;
};

/// Runs one command at a time for each caller. Any thread.
class ProcessRunner {
 public:
    /// `monotonicSeconds` is the clock of the deadline.
    ProcessRunner(platform::ChildProcesses& processes, std::function<double()> monotonicSeconds);

    /// Waits for the command. Returns its whole output if it ended with status 0 within its limits.
    /// Absent otherwise; a command that has not ended by then is terminated.
    std::optional<std::string> run(const ProcessRequest& request);

 private:
    platform::ChildProcesses& processes_;
    const std::function<double()> monotonicSeconds_;
};

}  // namespace tarnwick
