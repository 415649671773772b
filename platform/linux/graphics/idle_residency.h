// Busy shares from a counter of the time that an engine was asleep.
#pragma once

#include <cstdint>
#include <optional>

namespace tarnwick::platform {

/// One counter of milliseconds. It may have 32 bits and wrap. One thread at a time.
class IdleResidency {
 public:
    /// The share of the time since the last sample that the engine was awake, percent 0...100. The
    /// time is that of a clock that stands still while the machine sleeps, seconds. Absent for the
    /// first sample, for a counter that has never counted, and where it went back or ahead of the
    /// time; the next sample then begins anew. Samples that follow too closely repeat the last
    /// answer.
    std::optional<double> busyPercentage(std::uint64_t idleMilliseconds, double now);

    /// The next sample is the first.
    void forget();

 private:
    struct Sample {
        std::uint64_t idleMilliseconds;
        double moment;
    };

    std::optional<Sample> previous_;
    std::optional<double> answer_;
};

}  // namespace tarnwick::platform
