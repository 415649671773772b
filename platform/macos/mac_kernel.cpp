// SPDX-License-Identifier: MIT
#include <array>
#include <chrono>
#include <cstddef>
#include <mach/mach.h>
#include <sys/sysctl.h>
#include <time.h>

#include "platform/macos/mac_machine.h"
#include "platform/macos/owned.h"
#include "platform/macos/readers/kernel_records.h"
#include "services/processor_loads.h"

namespace tarnwick::platform {
namespace {

/// Reads a value of a known size. Absent on failure.
template <class T>
std::optional<T> valueNamed(const char* name) {
    T value{};
    std::size_t size = sizeof value;
    if (sysctlbyname(name, &value, &size, nullptr, 0) != 0) {
        return std::nullopt;
    }
    return value;
}

}  // namespace

std::optional<std::int32_t> MacKernel::logicalCPUCount() {
    return valueNamed<std::int32_t>("hw.logicalcpu");
}

std::optional<std::uint64_t> MacKernel::memorySize() {
    return valueNamed<std::uint64_t>("hw.memsize");
}

std::optional<SwapUsage> MacKernel::swapUsage() {
    const auto bytes = valueNamed<std::array<std::byte, kSwapUsageSize>>("vm.swapusage");
    return bytes ? decodeSwapUsage(*bytes) : std::nullopt;
}

HostProcessorInfo MacKernel::hostProcessorInfo() {
    const HostPort host;
    natural_t processorCount = 0;
    processor_info_array_t array = nullptr;
    mach_msg_type_number_t wordCount = 0;
    const kern_return_t result = host_processor_info(host.get(), kProcessorCPULoadInfoFlavour,
                                                     &processorCount, &array, &wordCount);
    if (result != KERN_SUCCESS) {
        return {.result = result};
    }
    const KernelWords words(array, wordCount);
    if (array == nullptr) {
        return {.result = result};
    }
    return {.result = result,
            .processorCount = processorCount,
            .words = std::vector<std::uint32_t>(words.get().begin(), words.get().end())};
}

HostStatistics MacKernel::hostStatistics64() {
    const HostPort host;
    alignas(std::uint64_t) std::array<std::byte, kVMStatisticsSize> bytes{};
    mach_msg_type_number_t count = kHostVMInfo64Count;
    const kern_return_t result = host_statistics64(
        host.get(), kHostVMInfo64Flavour, reinterpret_cast<host_info64_t>(bytes.data()), &count);
    if (result != KERN_SUCCESS) {
        return {.result = result};
    }
    return {.result = result, .statistics = decodeVMStatistics(bytes).value_or(VMStatistics{})};
}

std::optional<TimeValue> MacKernel::bootTime() {
    std::array<std::int32_t, kBootTimeName.size()> name = kBootTimeName;
    std::array<std::byte, kTimeValueSize> bytes{};
    std::size_t size = bytes.size();
    if (sysctl(name.data(), name.size(), bytes.data(), &size, nullptr, 0) != 0) {
        return std::nullopt;
    }
    return decodeTimeValue(bytes);
}

std::uint64_t MacKernel::pageSize() {
    return vm_page_size;
}

double MacKernel::monotonicSeconds() {
    return static_cast<double>(clock_gettime_nsec_np(CLOCK_MONOTONIC_RAW)) / 1e9;
}

double MacKernel::wallClockSeconds() {
    using Seconds = std::chrono::duration<double>;
    return Seconds(std::chrono::system_clock::now().time_since_epoch()).count();
}

}  // namespace tarnwick::platform
