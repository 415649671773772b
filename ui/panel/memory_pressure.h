// SPDX-License-Identifier: MIT
// How short of memory the machine is, as an estimate.
#pragma once

#include <string_view>

#include "core/records/metric_records.h"

namespace tarnwick {

/// The raw values are 0, 1 and 2.
enum class MemoryPressure {
    good = 0,
    normal = 1,
    high = 2,
};

/// "Good", "Normal", "High".
std::string_view word(MemoryPressure pressure);

/// Judged by free and cached memory, which programs can have at once, and by compressed memory.
/// Used, wired and application memory and swap do not count. Good if the total is 0.
MemoryPressure estimatedPressure(const MemoryInfo& memory);

}  // namespace tarnwick
