// SPDX-License-Identifier: MIT
// Which processes get a row, and in which order.
#pragma once

#include <cstdint>
#include <vector>

#include "core/records/metric_records.h"

namespace tarnwick {

/// A process that reaches one of these is worth keeping: the first in percent, the second in bytes.
inline constexpr double kMinimumCPUUsage = 0.1;
inline constexpr std::uint64_t kMinimumMemoryUsage = 1'000'000;

/// Whether a process with this share of the machine (percent) and this resident memory (bytes) is
/// kept. A process with a share that is not a number is kept.
bool isWorthKeeping(double cpuUsage, std::uint64_t memoryUsage);

/// The first `limit` samples (fewer when there are fewer) by falling CPU use. Equal ones stay in
/// their order. Values that are not a number come last.
std::vector<AppProcessInfo> topByCPU(const std::vector<AppProcessInfo>& samples, int limit);

/// The same by falling resident memory.
std::vector<AppProcessInfo> topByMemory(const std::vector<AppProcessInfo>& samples, int limit);

}  // namespace tarnwick
