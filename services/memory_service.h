// SPDX-License-Identifier: MIT
// Memory and swap from the kernel's page counts.
#pragma once

#include <cstdint>

#include "core/records/metric_records.h"
#include "platform/kernel.h"
#include "platform/log.h"

namespace tarnwick {

/// Keeps nothing between calls. Any thread.
class MemoryService {
 public:
    explicit MemoryService(platform::Kernel& kernel, platform::Logger logger = platform::Logger());

    /// The process-wide instance on the current platform, made on first use, never destroyed.
    static MemoryService& shared();

    /// Never fails. Without page counts only `total` is filled; without swap figures both swap
    /// fields are 0; without the memory size `total` and `used` are 0.
    MemoryInfo readMemoryInfo();

 private:
    platform::Kernel& kernel_;
    platform::Logger logger_;
    /// Bytes; asked for once, when the service is made.
    const std::uint64_t pageSize_;
};

}  // namespace tarnwick
