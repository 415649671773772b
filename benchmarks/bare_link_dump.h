// The floor of a network pass: the same question to the kernel, and an answer that is not read.
#pragma once

#include <array>
#include <cstddef>

namespace tarnwick::benchmarks {

/// Asks for all links over a kept socket, with bare system calls and a buffer of the size that the
/// program uses.
class BareLinkDump {
 public:
    BareLinkDump();
    BareLinkDump(const BareLinkDump&) = delete;
    BareLinkDump& operator=(const BareLinkDump&) = delete;
    ~BareLinkDump();

    /// Bytes of the answer, of which nothing is looked at but where its messages begin; 0 where the
    /// kernel does not answer.
    std::size_t read();

 private:
    int socket_ = -1;
    alignas(8) std::array<char, std::size_t{32} << 10> buffer_{};
};

}  // namespace tarnwick::benchmarks
