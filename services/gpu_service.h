// SPDX-License-Identifier: MIT
// Use of the graphics processor.
#pragma once

#include <optional>

#include "core/records/metric_records.h"
#include "platform/accelerators.h"
#include "platform/log.h"

namespace tarnwick {

/// Keeps nothing between calls. Any thread.
class GPUService {
 public:
    explicit GPUService(platform::Accelerators& accelerators,
                        platform::Logger logger = platform::Logger());

    /// The process-wide instance on the current platform, made on first use, never destroyed.
    static GPUService& shared();

    /// The busiest accelerator, the first of equally busy ones. Never fails: the record is
    /// unavailable where no accelerator has statistics.
    GPUInfo readGPUInfo();
    /// The same, but absent where no accelerator has statistics because one does not answer.
    std::optional<GPUInfo> answeredGPUInfo();

 private:
    platform::Accelerators& accelerators_;
    platform::Logger logger_;
};

}  // namespace tarnwick
