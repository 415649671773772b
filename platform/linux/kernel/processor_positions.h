// Keeps the tick counters at each position continuous while processors come and go.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "platform/linux/kernel/proc_stat.h"

namespace tarnwick::platform {

/// Counters are compared by position, and the kernel lists only processors that are online. When
/// one of them leaves or comes, the others move to another position, where they would be compared
/// with the counters of their predecessor. This adds to each position what makes it go on from
/// where it was by exactly the ticks of the processor that now holds it. One thread at a time.
class ProcessorPositions {
 public:
    /// Four words a processor, in the order given. A processor that was not there the last time
    /// adds nothing yet.
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
