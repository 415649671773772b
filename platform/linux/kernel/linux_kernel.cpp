// SPDX-License-Identifier: MIT
#include "platform/linux/kernel/linux_kernel.h"

#include <cerrno>
#include <unistd.h>
#include <utility>

#include "platform/linux/kernel/page_counts.h"
#include "platform/linux/kernel/proc_uptime.h"

namespace tarnwick::platform {

namespace {

// Greatest age in seconds of a reading that is shared by the questions of one sample. They follow
// each other within microseconds.
constexpr double kLongestShare = 0.1;

}  // namespace

LinuxKernel::LinuxKernel(const std::string& root, std::function<double()> sinceBoot)
    : root_(root),
      sinceBoot_(std::move(sinceBoot)),
      pageSize_(static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE))),
      onlineProcessors_(root),
      stat_(belowRoot(root, "proc/stat")),
      memInfoFile_(belowRoot(root, "proc/meminfo")),
      zram_(root),
      zfs_(root) {}

std::optional<std::int32_t> LinuxKernel::logicalCPUCount() {
    return onlineProcessors_.count();
}

std::optional<std::uint64_t> LinuxKernel::memorySize() {
    const std::lock_guard guard(memoryLock_);
    readMemInfo(sizeQuestion);
    if (memInfo_.memTotal == std::uint64_t{0}) {
        return std::nullopt;
    }
    return memInfo_.memTotal;
}

std::optional<SwapUsage> LinuxKernel::swapUsage() {
    const std::lock_guard guard(memoryLock_);
    readMemInfo(swapQuestion);
    return swapUsageOf(memInfo_);
}

HostStatistics LinuxKernel::hostStatistics64() {
    const std::lock_guard guard(memoryLock_);
    readMemInfo(statisticsQuestion);
    if (memInfoError_ != 0) {
        return {.result = memInfoError_, .statistics = {}};
    }
    const UnnamedMemory unnamed{
        .zram = zram_.memoryUsed(memInfoReadAt_, memInfo_.swapTotal.value_or(0)),
        .zfsCache = zfs_.reclaimable(memInfoReadAt_, memInfo_.memTotal.value_or(0))};
    const std::optional<VMStatistics> statistics = vmStatistics(memInfo_, unnamed, pageSize_);
    if (!statistics) {
        return {.result = EIO, .statistics = {}};
    }
    return {.result = 0, .statistics = *statistics};
}

void LinuxKernel::readMemInfo(MemoryQuestion question) {
    const double now = sinceBoot_();
    const double age = now - memInfoReadAt_;
    if ((answered_ & question) != 0 || age < 0 || age > kLongestShare) {
        const std::optional<std::string_view> text = memInfoFile_.read();
        memInfo_ = text ? parseMemInfo(*text) : MemInfo{};
        memInfoError_ = text ? 0 : memInfoFile_.error();
        memInfoReadAt_ = now;
        answered_ = 0;
    }
    answered_ |= question;
}

HostProcessorInfo LinuxKernel::hostProcessorInfo() {
    const std::lock_guard guard(statLock_);
    HostProcessorInfo info;
    const std::optional<std::string_view> text = stat_.read();
    if (!text) {
        info.result = stat_.error();
    } else if (!parseProcessorTicks(*text, ticks_)) {
        info.result = EIO;
    } else {
        info.processorCount = static_cast<std::uint32_t>(ticks_.size());
        info.words = counts_.words(ticks_);
    }
    return info;
}

std::optional<TimeValue> LinuxKernel::bootTime() {
    const std::lock_guard guard(statLock_);
    const std::optional<std::string_view> text = stat_.read();
    const std::optional<std::int64_t> seconds = text ? parseBootTime(*text) : std::nullopt;
    if (!seconds) {
        return std::nullopt;
    }
    return TimeValue{.seconds = *seconds, .microseconds = 0};
}

std::uint64_t LinuxKernel::pageSize() {
    return pageSize_;
}

double LinuxKernel::monotonicSeconds() {
    return rawMonotonicSeconds();
}

double LinuxKernel::wallClockSeconds() {
    if (root_ != "/") {
        const auto uptime =
            parseUptime(readWholeFile(belowRoot(root_, "proc/uptime")).value_or(""));
        const auto boot = bootTime();
        if (uptime && boot) {
            return static_cast<double>(boot->seconds) + *uptime;
        }
    }
    return wallClockNow();
}

}  // namespace tarnwick::platform
