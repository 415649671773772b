// What one accelerator's properties say about it, and which of two accelerators is shown.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/records/metric_records.h"
#include "platform/accelerators.h"

namespace tarnwick {

/// A "model" property: a text as it is, bytes as UTF-8 without NUL characters. Empty for anything
/// else and where there is none.
std::string gpuModelName(const platform::PropertyValue* model);

/// A "gpu-core-count" property: a number, or a text that is one decimal integer. 0 for anything
/// else and where there is none.
std::int64_t gpuCoreCount(const platform::PropertyValue* count);

/// The record of one accelerator. Absent where it publishes no performance statistics.
std::optional<GPUInfo> gpuCandidate(const platform::PropertyDictionary& service);

/// Whether an accelerator replaces the best one before it: it is busier, as a whole or else in its
/// renderer, or it is just as busy and the only one with a name.
bool isBetterGPU(const GPUInfo& candidate, const GPUInfo& best);

}  // namespace tarnwick
