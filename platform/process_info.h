// SPDX-License-Identifier: MIT
// What the system says about the machine as a whole.
#pragma once

#include <cstdint>

namespace tarnwick::platform {

/// The machine has no sensor that tells.
inline constexpr std::int64_t kUnknownThermalState = -1;

class ProcessInfo {
 public:
    virtual ~ProcessInfo() = default;

    /// Number of processors that run work now; at least 1. Any thread.
    virtual std::int64_t activeProcessorCount() = 0;
    /// 0 nominal, 1 fair, 2 serious, 3 critical, or kUnknownThermalState. May take as long as a
    /// sensor takes to answer. Any thread but the main one, one at a time.
    virtual std::int64_t thermalState() = 0;
};

}  // namespace tarnwick::platform
