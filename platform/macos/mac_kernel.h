// Kernel statistics from Mach and sysctl.
#pragma once

#include "platform/kernel.h"

namespace tarnwick::platform {

class MacKernel final : public Kernel {
 public:
    std::optional<std::int32_t> logicalCPUCount() override;
    std::optional<std::uint64_t> memorySize() override;
    std::optional<SwapUsage> swapUsage() override;
    HostProcessorInfo hostProcessorInfo() override;
    HostStatistics hostStatistics64() override;
    std::optional<TimeValue> bootTime() override;
    std::uint64_t pageSize() override;
    /// `clock_gettime_nsec_np` of the raw monotonic clock.
    double monotonicSeconds() override;
    double wallClockSeconds() override;
};

}  // namespace tarnwick::platform
