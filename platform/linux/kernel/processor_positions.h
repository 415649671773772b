// Keeps the tick counters at each position continuous while processors come and go.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "platform/linux/kernel/proc_stat.h"

namespace tarnwick::platform {

/// The kernel lists only online processors, and counters are compared by their position in the
/// list. When a processor goes or comes, others move to another position, where their counters
/// would be compared with those of the previous processor there.
///
/// This class adds an offset to each position: its counters continue from their last values, and
/// grow by exactly the ticks of the processor that is there now. One thread at a time.
class ProcessorPositions {
 public:
    /// Four words for each processor, in the given order. A processor that was not in the last list
    /// adds no ticks yet.
    std::vector<std::uint32_t> words(const std::vector<ProcessorTicks>& processors);

 private:
    struct Position {
        ProcessorTicks last;
        /// Added to the kernel's counters, modulo 2^32.
        std::array<std::uint32_t, 4> offsets{};
    };

    bool sameProcessors(const std::vector<ProcessorTicks>& processors) const;
    void rearrange(const std::vector<ProcessorTicks>& processors);

    std::vector<Position> positions_;
};

}  // namespace tarnwick::platform
