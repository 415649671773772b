// SPDX-License-Identifier: MIT
// The floor of a pass over all processes: reads the same files and ignores their content.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarnwick::benchmarks {

/// The processes that the machine has now. Ends the program if they cannot be listed.
std::vector<std::int32_t> population();

/// Opens, reads and closes the stat file of each process with bare system calls. Lists nothing,
/// parses nothing, keeps nothing.
class BareProcessLoop {
 public:
    /// Covers the processes that exist now.
    BareProcessLoop();

    /// Bytes of all files together.
    std::size_t read();

 private:
    std::vector<std::int32_t> identifiers_;
    std::vector<char> buffer_;
};

}  // namespace tarnwick::benchmarks
