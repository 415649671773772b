// SPDX-License-Identifier: MIT
#import <AppKit/AppKit.h>
#include <libproc.h>
#include <mach/mach_time.h>
#include <sys/sysctl.h>
#include <unistd.h>
#include <vector>

#include "platform/macos/foundation_text.h"
#include "platform/macos/mac_machine.h"

namespace tarnwick::platform {

std::int32_t MacRawProcessTable::ownIdentifier() {
    return getpid();
}

std::int64_t MacRawProcessTable::processorCount() {
    @autoreleasepool {
        return static_cast<std::int64_t>(NSProcessInfo.processInfo.processorCount);
    }
}

std::optional<TimebaseInfo> MacRawProcessTable::timebaseInfo() {
    mach_timebase_info_data_t info{};
    if (mach_timebase_info(&info) != KERN_SUCCESS) {
        return std::nullopt;
    }
    return TimebaseInfo{.numer = info.numer, .denom = info.denom};
}

std::optional<RunningApplication> MacRawProcessTable::runningApplication(std::int32_t identifier) {
    // Each name has its own pool, because the background work that asks may run for long.
    @autoreleasepool {
        NSRunningApplication* application =
            [NSRunningApplication runningApplicationWithProcessIdentifier:identifier];
        if (application == nil) {
            return std::nullopt;
        }
        return RunningApplication{.activationPolicy = application.activationPolicy,
                                  .localizedName = optionalText(application.localizedName)};
    }
}

std::string MacRawProcessTable::displayName(const std::string& path) {
    @autoreleasepool {
        return text([NSFileManager.defaultManager displayNameAtPath:foundationText(path)]);
    }
}

std::optional<std::size_t> MacRawProcessTable::sysctl(std::span<const std::int32_t> name,
                                                      std::optional<std::span<std::byte>> buffer) {
    // A copy, because the declaration asks for a name that may be changed; the call does not change
    // it.
    std::vector<int> integers(name.begin(), name.end());
    std::size_t size = buffer ? buffer->size() : 0;
    if (::sysctl(integers.data(), static_cast<u_int>(integers.size()),
                 buffer ? buffer->data() : nullptr, &size, nullptr, 0) != 0) {
        return std::nullopt;
    }
    return size;
}

std::int32_t MacRawProcessTable::procPidInfo(std::int32_t identifier, std::int32_t flavour,
                                             std::uint64_t argument, std::span<std::byte> buffer) {
    return proc_pidinfo(identifier, flavour, argument, buffer.data(),
                        static_cast<int>(buffer.size()));
}

std::int32_t MacRawProcessTable::procPidPath(std::int32_t identifier, std::span<std::byte> buffer) {
    return proc_pidpath(identifier, buffer.data(), static_cast<std::uint32_t>(buffer.size()));
}

}  // namespace tarnwick::platform
