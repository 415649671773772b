// SPDX-License-Identifier: MIT
#include "ui/panel/memory_pressure.h"

#include <algorithm>
#include <cstdint>

namespace tarnwick {

namespace {

// Percent of physical memory.
constexpr double kHighAvailable = 10;
constexpr double kNormalAvailable = 20;
constexpr double kHighCompressed = 15;
constexpr double kNormalCompressed = 8;

}  // namespace

std::string_view word(MemoryPressure pressure) {
    switch (pressure) {
        case MemoryPressure::good:
            return "Good";
        case MemoryPressure::normal:
            return "Normal";
        case MemoryPressure::high:
            break;
    }
    return "High";
}

MemoryPressure estimatedPressure(const MemoryInfo& memory) {
    if (memory.total == 0) {
        return MemoryPressure::good;
    }
    // Limited to the total, even where the sum of both would overflow its type.
    const std::uint64_t free = std::min(memory.free, memory.total);
    const std::uint64_t available = free + std::min(memory.cached, memory.total - free);
    const auto percent = [&memory](std::uint64_t bytes) {
        return static_cast<double>(bytes) / static_cast<double>(memory.total) * 100;
    };
    if (percent(available) <= kHighAvailable || percent(memory.compressed) >= kHighCompressed) {
        return MemoryPressure::high;
    }
    if (percent(memory.compressed) >= kNormalCompressed || percent(available) <= kNormalAvailable) {
        return MemoryPressure::normal;
    }
    return MemoryPressure::good;
}

}  // namespace tarnwick
