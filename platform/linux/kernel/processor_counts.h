// SPDX-License-Identifier: MIT
// Counts the ticks at each position of the list of processors.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "platform/linux/kernel/proc_stat.h"

namespace tarnwick::platform {

/// The samplers compare counters by their position in the list. The kernel lists only processors
/// that are online, so a processor that comes or goes moves the others to other positions. This
/// class counts at each position the ticks that its processor has made since the last reading. One
/// thread at a time.
///
/// Each column of the kernel is compared by itself: one that went backwards, as the wait for input
/// and output does on some kernels, adds nothing and takes nothing from the others. The counts
/// begin at 0 with the first reading, whatever the uptime is. Where one would not fit into 32 bits,
/// after 497 days of readings, all begin at 0 again: had only the idle time gone back, the machine
/// would seem busy.
class ProcessorCounts {
 public:
    /// Four words for each processor, in the given order: user, system (with
    /// interrupts and stolen time), idle (with waiting for input and output), nice. A processor
    /// that was not in the last list adds no ticks yet.
    std::vector<std::uint32_t> words(const std::vector<ProcessorTicks>& processors);

 private:
    std::vector<ProcessorTicks> previous_;
    std::vector<std::array<std::uint64_t, 4>> counts_;
};

}  // namespace tarnwick::platform
