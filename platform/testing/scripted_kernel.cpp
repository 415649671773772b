// SPDX-License-Identifier: MIT
#include "platform/testing/scripted_kernel.h"

namespace tarnwick::platform::testing {

HostProcessorInfo processorTicks(std::initializer_list<std::array<std::uint32_t, 4>> processors) {
    HostProcessorInfo info;
    info.processorCount = static_cast<std::uint32_t>(processors.size());
    info.words.emplace();
    for (const auto& ticks : processors) {
        info.words->insert(info.words->end(), ticks.begin(), ticks.end());
    }
    return info;
}

void ScriptedKernel::advance(double seconds) {
    monotonic_ = monotonic_ + seconds;
    wallClock_ = wallClock_ + seconds;
}

std::optional<std::int32_t> ScriptedKernel::logicalCPUCount() {
    calls_.add("logicalCPUCount");
    return answers.logicalCPUCount.take();
}

std::optional<std::uint64_t> ScriptedKernel::memorySize() {
    calls_.add("memorySize");
    return answers.memorySize.take();
}

std::optional<SwapUsage> ScriptedKernel::swapUsage() {
    calls_.add("swapUsage");
    return answers.swapUsage.take();
}

HostProcessorInfo ScriptedKernel::hostProcessorInfo() {
    calls_.add("hostProcessorInfo");
    return answers.hostProcessorInfo.take();
}

HostStatistics ScriptedKernel::hostStatistics64() {
    calls_.add("hostStatistics64");
    return answers.hostStatistics64.take();
}

std::optional<TimeValue> ScriptedKernel::bootTime() {
    calls_.add("bootTime");
    return answers.bootTime.take();
}

std::uint64_t ScriptedKernel::pageSize() {
    calls_.add("pageSize");
    return answers.pageSize.take();
}

double ScriptedKernel::monotonicSeconds() {
    calls_.add("monotonicSeconds");
    return monotonic_;
}

double ScriptedKernel::wallClockSeconds() {
    calls_.add("wallClockSeconds");
    return wallClock_;
}

}  // namespace tarnwick::platform::testing
