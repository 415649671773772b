// SPDX-License-Identifier: MIT
// Processes that do nothing.
#pragma once

#include <sys/types.h>
#include <vector>

namespace tarnwick::benchmarks {

/// Processes that sleep until this object ends them, each by its own identifier.
class Sleepers {
 public:
    /// Each opens so many files beside those that it inherits.
    explicit Sleepers(int count, int descriptors = 0);
    Sleepers(const Sleepers&) = delete;
    Sleepers& operator=(const Sleepers&) = delete;
    ~Sleepers();

 private:
    std::vector<pid_t> identifiers_;
};

/// Takes "--processes=N" off the command line; `usual` without it. Ends the program if N is no
/// number.
int takeProcesses(int& argc, char** argv, int usual);

}  // namespace tarnwick::benchmarks
