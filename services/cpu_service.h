// SPDX-License-Identifier: MIT
// Processor use from the kernel's cumulative tick counters.
#pragma once

#include <mutex>
#include <optional>
#include <vector>

#include "core/records/metric_records.h"
#include "platform/kernel.h"
#include "platform/log.h"
#include "services/processor_loads.h"

namespace tarnwick {

/// Turns tick counters into the shares since the previous sample. A counter that went backwards or
/// wrapped contributes nothing to that sample. Any thread; calls take turns.
class CPUService {
 public:
    explicit CPUService(platform::Kernel& kernel, platform::Logger logger = platform::Logger());

    /// The process-wide instance on the current platform, made on first use, never destroyed.
    static CPUService& shared();

    /// Never fails: without counters the machine reads idle with `coreUsages` empty. The first call
    /// has no earlier sample: it reads idle, with a 0 for each processor. `coreCount` and the
    /// length of `coreUsages` come from two sources and may differ.
    CPUInfo readCPUInfo();

 private:
    platform::Kernel& kernel_;
    platform::Logger logger_;
    std::mutex lock;
    /// Guarded by `lock`; absent until the first successful sample, never cleared.
    std::optional<std::vector<processor_cpu_load_info>> previousCPUInfo;
};

}  // namespace tarnwick
