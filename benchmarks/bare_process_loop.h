// The floor of a pass over all processes: the same files, and what they hold is not read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarnwick::benchmarks {

/// The processes that the machine has now; ends the program where it cannot say.
std::vector<std::int32_t> population();

/// Opens, reads and closes the stat file of each process with bare system calls. Lists nothing,
/// parses nothing, keeps nothing.
class BareProcessLoop {
 public:
    /// Over the processes of this moment.
    BareProcessLoop();

    /// Bytes of all files together.
    std::size_t read();

 private:
    std::vector<std::int32_t> identifiers_;
    std::vector<char> buffer_;
};

}  // namespace tarnwick::benchmarks
