// Which processes are worth a row, and in which order.
#pragma once

#include <cstdint>
#include <vector>

#include "core/records/metric_records.h"

namespace tarnwick {

/// A process is worth keeping from either of these on.
inline constexpr double kMinimumCPUUsage = 0.1;
inline constexpr std::uint64_t kMinimumMemoryUsage = 1'000'000;

/// Whether a process with this share of the machine (percent) and this resident memory (bytes) is
/// kept. A share that is not a number keeps it.
bool isWorthKeeping(double cpuUsage, std::uint64_t memoryUsage);

/// The first `limit` samples (fewer when there are fewer) by falling CPU use; equal ones stay in
/// their order. What is not a number comes last.
std::vector<AppProcessInfo> topByCPU(const std::vector<AppProcessInfo>& samples, int limit);

/// The same by falling resident memory.
std::vector<AppProcessInfo> topByMemory(const std::vector<AppProcessInfo>& samples, int limit);

}  // namespace tarnwick
