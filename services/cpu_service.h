// Processor use from the kernel's cumulative tick counters.
#pragma once

#include <array>
#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

#include "core/metric_records.h"
#include "platform/kernel.h"
#include "platform/log.h"

namespace tarnwick {

/// Cumulative ticks of one processor, in the order user, system, idle, nice; each wraps at 2^32.
struct processor_cpu_load_info {
    std::array<std::uint32_t, 4> cpu_ticks{};
};
static_assert(sizeof(processor_cpu_load_info) == 16);

/// Turns tick counters into the shares since the previous sample. Any thread.
class CPUService {
 public:
    explicit CPUService(platform::Kernel& kernel, platform::Logger logger = platform::Logger());

    /// The process-wide instance on the current platform, made on first use.
    static CPUService& shared();

    /// Never fails: without counters the machine reads idle with `coreUsages` empty. The first
    /// call has nothing to compare with and reads idle, with a 0 for each processor.
    CPUInfo readCPUInfo();

 private:
    platform::Kernel& kernel_;
    platform::Logger logger_;
    std::mutex lock;
    /// Guarded by `lock`; absent until the first sample.
    std::optional<std::vector<processor_cpu_load_info>> previousCPUInfo;
};

}  // namespace tarnwick
