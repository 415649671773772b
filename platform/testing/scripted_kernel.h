// SPDX-License-Identifier: MIT
// A kernel with answers from a test, and with clocks that the test sets.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "platform/kernel.h"
#include "platform/testing/answers.h"

namespace tarnwick::platform::testing {

/// A successful answer of `host_processor_info`: four counters for each processor, in the order
/// user, system, idle, nice.
HostProcessorInfo processorTicks(std::initializer_list<std::array<std::uint32_t, 4>> processors);

/// Until a test says otherwise every operation that can fail does, pages have 4,096 bytes and both
/// clocks stand at 0. Any thread.
class ScriptedKernel final : public Kernel {
 public:
    /// One member for each operation.
    struct {
        Answers<std::optional<std::int32_t>> logicalCPUCount{std::nullopt};
        Answers<std::optional<std::uint64_t>> memorySize{std::nullopt};
        Answers<std::optional<SwapUsage>> swapUsage{std::nullopt};
        Answers<HostProcessorInfo> hostProcessorInfo{HostProcessorInfo{.result = 5}};
        Answers<HostStatistics> hostStatistics64{HostStatistics{.result = 5}};
        Answers<std::optional<TimeValue>> bootTime{std::nullopt};
        Answers<std::uint64_t> pageSize{4096};
    } answers;

    void setMonotonicSeconds(double seconds) { monotonic_ = seconds; }
    void setWallClockSeconds(double seconds) { wallClock_ = seconds; }
    /// Moves both clocks. From one thread at a time.
    void advance(double seconds);

    /// Names of the operations called since the start or the last clearCalls(), in order.
    std::vector<std::string> calls() const { return calls_.all(); }
    void clearCalls() { calls_.clear(); }

    std::optional<std::int32_t> logicalCPUCount() override;
    std::optional<std::uint64_t> memorySize() override;
    std::optional<SwapUsage> swapUsage() override;
    HostProcessorInfo hostProcessorInfo() override;
    HostStatistics hostStatistics64() override;
    std::optional<TimeValue> bootTime() override;
    std::uint64_t pageSize() override;
    double monotonicSeconds() override;
    double wallClockSeconds() override;

 private:
    CallRecord calls_;
    std::atomic<double> monotonic_{0};
    std::atomic<double> wallClock_{0};
};

}  // namespace tarnwick::platform::testing
