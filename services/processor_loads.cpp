// SPDX-License-Identifier: MIT
#include "services/processor_loads.h"

namespace tarnwick {

std::optional<std::vector<processor_cpu_load_info>> decodeProcessorLoads(
    std::uint32_t processorCount, std::span<const std::uint32_t> words) {
    if (std::uint64_t{processorCount} * kProcessorLoadSize > std::uint64_t{words.size_bytes()}) {
        return std::nullopt;
    }
    std::vector<processor_cpu_load_info> loads(processorCount);
    auto next = words.begin();
    for (processor_cpu_load_info& load : loads) {
        for (std::uint32_t& ticks : load.cpu_ticks) {
            ticks = *next++;
        }
    }
    return loads;
}

}  // namespace tarnwick
