// SPDX-License-Identifier: MIT
// The format in which the platform delivers the ticks of its processors.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tarnwick {

/// `host_processor_info` flavour that gives the ticks of each processor.
inline constexpr std::int32_t kProcessorCPULoadInfoFlavour = 2;
/// Size of one processor's record, bytes.
inline constexpr std::size_t kProcessorLoadSize = 16;

/// Cumulative ticks of one processor, in the order user, system, idle, nice; each wraps at 2^32.
struct processor_cpu_load_info {
    std::array<std::uint32_t, 4> cpu_ticks{};
};
static_assert(sizeof(processor_cpu_load_info) == kProcessorLoadSize);

/// The records of `processorCount` processors; absent when `words` is too short for them.
std::optional<std::vector<processor_cpu_load_info>> decodeProcessorLoads(
    std::uint32_t processorCount, std::span<const std::uint32_t> words);

}  // namespace tarnwick
