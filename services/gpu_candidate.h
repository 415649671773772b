// SPDX-License-Identifier: MIT
// What one accelerator's properties say about it, and which of two accelerators is shown.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/records/metric_records.h"
#include "platform/accelerators.h"

namespace tarnwick {

/// The name in a "model" property: a text is returned as it is; bytes are read as UTF-8, and NUL
/// characters are removed. Empty when the property is missing, of another type or not UTF-8.
std::string gpuModelName(const platform::PropertyValue* model);

/// The count in a "gpu-core-count" property: a number, or a text that is one decimal integer. 0
/// when the property is missing or anything else.
std::int64_t gpuCoreCount(const platform::PropertyValue* count);

/// The record of one accelerator. Absent where it publishes no performance statistics.
std::optional<GPUInfo> gpuCandidate(const platform::PropertyDictionary& service);

/// Whether an accelerator replaces the best one before it. It does when it is busier overall; when
/// equally busy overall, but busier in the renderer; or when equal in both, and only it has a name.
bool isBetterGPU(const GPUInfo& candidate, const GPUInfo& best);

}  // namespace tarnwick
