// SPDX-License-Identifier: MIT
// Tick arrays of any length, for any claimed number of processors, pass one after the other through
// one CPU sampler: every record keeps its promises.
//
// An input is a sequence of readings. Each has one byte for the number of processors (255: more
// than any array holds), one for the number of words, then the words.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <span>
#include <vector>

#include "fuzz/fuzzer.h"
#include "platform/testing/scripted_kernel.h"
#include "services/cpu_service.h"

namespace {

using tarnwick::CPUInfo;
using tarnwick::fuzz::require;
using tarnwick::platform::HostProcessorInfo;

/// Takes one reading from the front of `bytes`.
HostProcessorInfo nextReading(std::span<const std::uint8_t>& bytes) {
    HostProcessorInfo reading;
    reading.processorCount = bytes[0] == 255 ? std::numeric_limits<std::uint32_t>::max() : bytes[0];
    const std::size_t wanted = bytes[1];
    bytes = bytes.subspan(2);
    reading.words.emplace(std::min(wanted, bytes.size() / sizeof(std::uint32_t)));
    const std::size_t length = reading.words->size() * sizeof(std::uint32_t);
    if (length > 0) {
        std::memcpy(reading.words->data(), bytes.data(), length);
    }
    bytes = bytes.subspan(length);
    return reading;
}

bool isPercentage(double value) {
    return value >= 0 && value <= 100;
}

void check(const HostProcessorInfo& reading, const CPUInfo& info) {
    const bool complete = std::uint64_t{reading.processorCount} * 4 <= reading.words->size();
    require(info.coreUsages.size() == (complete ? reading.processorCount : 0));
    require(std::ranges::all_of(info.coreUsages, isPercentage));
    require(isPercentage(info.usagePercentage) && isPercentage(info.userPercentage) &&
            isPercentage(info.systemPercentage) && isPercentage(info.idlePercentage));
    require(std::abs(info.usagePercentage + info.idlePercentage - 100) < 1e-9);
    require(info.userPercentage + info.systemPercentage <= info.usagePercentage + 1e-9);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tarnwick::platform::testing::ScriptedKernel kernel;
    tarnwick::CPUService service(kernel);
    std::span bytes(data, size);
    while (bytes.size() >= 2) {
        const HostProcessorInfo reading = nextReading(bytes);
        kernel.answers.hostProcessorInfo.set(reading);
        check(reading, service.readCPUInfo());
    }
    return 0;
}
