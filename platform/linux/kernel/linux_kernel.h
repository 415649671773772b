// SPDX-License-Identifier: MIT
// Kernel statistics from /proc and /sys.
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/kernel.h"
#include "platform/linux/files/kept_file.h"
#include "platform/linux/kernel/clocks.h"
#include "platform/linux/kernel/online_processors.h"
#include "platform/linux/kernel/proc_meminfo.h"
#include "platform/linux/kernel/proc_stat.h"
#include "platform/linux/kernel/processor_counts.h"
#include "platform/linux/kernel/zfs_cache.h"
#include "platform/linux/kernel/zram_devices.h"

namespace tarnwick::platform {

/// Reads the tree below a root. The files that are read at every tick stay open. Any thread.
class LinuxKernel final : public Kernel {
 public:
    /// `sinceBoot` returns the time in seconds; the age of readings is measured with it.
    explicit LinuxKernel(const std::string& root = "/",
                         std::function<double()> sinceBoot = sinceBootSeconds);

    /// Number of online processors.
    std::optional<std::int32_t> logicalCPUCount() override;
    /// The memory that the kernel manages: a little less than what is installed.
    std::optional<std::uint64_t> memorySize() override;
    std::optional<SwapUsage> swapUsage() override;
    /// The processors that are online, in the kernel's order; counted from the first call on. The
    /// result is the error of the read,
    /// or EIO for a damaged file.
    HostProcessorInfo hostProcessorInfo() override;
    /// External is what of the page cache, of the kernel's own caches and of that of ZFS is
    /// available, internal is anonymous and shared memory, the compressor is compressed swap in
    /// memory, wired is what else is in use. No page counts as purgeable or speculative. The result
    /// is the error of the read, or EIO for a damaged file.
    HostStatistics hostStatistics64() override;
    std::optional<TimeValue> bootTime() override;
    std::uint64_t pageSize() override;
    double monotonicSeconds() override;
    /// In a tree other than "/" the time stands still at the moment that its `proc/uptime` and boot
    /// time give. If these are missing, it is the real time.
    double wallClockSeconds() override;

 private:
    /// The three questions that one memory sample asks, as bits.
    enum MemoryQuestion : unsigned { sizeQuestion = 1, statisticsQuestion = 2, swapQuestion = 4 };

    /// Makes `memInfo_` answer this question. Uses the last reading if it is fresh and has not
    /// answered this question yet, else reads again.
    void readMemInfo(MemoryQuestion question);

    const std::string root_;
    const std::function<double()> sinceBoot_;
    const std::uint64_t pageSize_;
    OnlineProcessors onlineProcessors_;

    std::mutex statLock_;
    // Guarded by statLock_.
    KeptFile stat_;
    std::vector<ProcessorTicks> ticks_;
    ProcessorCounts counts_;

    std::mutex memoryLock_;
    // Guarded by memoryLock_.
    KeptFile memInfoFile_;
    ZramDevices zram_;
    ZfsCache zfs_;
    MemInfo memInfo_;
    /// Error of the last read of the file; 0 when it could be read.
    int memInfoError_ = 0;
    double memInfoReadAt_ = 0;
    /// The questions that the last reading has answered; all of them before the first reading.
    unsigned answered_ = sizeQuestion | statisticsQuestion | swapQuestion;
};

}  // namespace tarnwick::platform
