// SPDX-License-Identifier: MIT
// Kernel statistics, under the names of the calls that macOS has for them. Other systems give the
// same quantities from their own sources.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace tarnwick::platform {

/// `host_processor_info`, processor load flavour.
struct HostProcessorInfo {
    /// 0 on success, else the system's error code.
    std::int32_t result = 0;
    /// Number of processors the words describe.
    std::uint32_t processorCount = 0;
    /// Four cumulative tick counters a processor: user, system, idle, nice. They may wrap past
    /// 2^32. Absent where the call gave no array.
    std::optional<std::vector<std::uint32_t>> words{};
};

/// The fields of `vm_statistics64` that the program reads; all are counts of pages.
struct VMStatistics {
    std::uint32_t free_count = 0;
    std::uint32_t wire_count = 0;
    std::uint32_t purgeable_count = 0;
    /// Read ahead and not yet used; part of free_count.
    std::uint32_t speculative_count = 0;
    /// Pages that the compressor occupies.
    std::uint32_t compressor_page_count = 0;
    /// File-backed pages.
    std::uint32_t external_page_count = 0;
    /// Anonymous pages.
    std::uint32_t internal_page_count = 0;
};

/// `host_statistics64`, virtual-memory flavour.
struct HostStatistics {
    /// 0 on success, else the system's error code.
    std::int32_t result = 0;
    /// Meaningful only when the result is 0.
    VMStatistics statistics{};
};

/// `vm.swapusage`; all are bytes.
struct SwapUsage {
    std::uint64_t total = 0;
    std::uint64_t available = 0;
    std::uint64_t used = 0;
};

/// A point in time as the kernel gives it.
struct TimeValue {
    /// Seconds since 1970.
    std::int64_t seconds = 0;
    std::int32_t microseconds = 0;
};

/// Any thread. Every operation releases its temporary resources before it returns.
class Kernel {
 public:
    virtual ~Kernel() = default;

    /// `sysctlbyname` "hw.logicalcpu": number of logical processors. Absent on failure.
    virtual std::optional<std::int32_t> logicalCPUCount() = 0;
    /// `sysctlbyname` "hw.memsize": physical memory, bytes. Absent on failure.
    virtual std::optional<std::uint64_t> memorySize() = 0;
    /// `sysctlbyname` "vm.swapusage". Absent on failure.
    virtual std::optional<SwapUsage> swapUsage() = 0;
    /// Ticks of every processor since boot.
    virtual HostProcessorInfo hostProcessorInfo() = 0;
    /// What the pages of the physical memory are used for now.
    virtual HostStatistics hostStatistics64() = 0;
    /// `sysctl` {kernel, boot time}. Absent on failure.
    virtual std::optional<TimeValue> bootTime() = 0;
    /// `vm_page_size`, bytes: the unit of VMStatistics. Constant for the life of the process.
    virtual std::uint64_t pageSize() = 0;
    /// Seconds of the raw monotonic clock. While the machine sleeps it runs on macOS and stands
    /// still on Linux.
    virtual double monotonicSeconds() = 0;
    /// Wall-clock seconds since 1970.
    virtual double wallClockSeconds() = 0;
};

}  // namespace tarnwick::platform
