// Computes how busy an engine is from a counter of the time that it slept.
#pragma once

#include <cstdint>
#include <optional>

namespace tarnwick::platform {

/// Follows one counter of milliseconds, which may have 32 bits and wrap. One thread at a time.
class IdleResidency {
 public:
    /// The share of the time since the last sample that the engine was awake, percent 0...100.
    /// `now` is in seconds of a clock that stands still while the machine sleeps.
    ///
    /// Absent for the first sample, for a counter that has never counted, and if the counter went
    /// back or ahead of the clock; the next sample then starts from this one. A sample that follows
    /// too soon repeats the last answer.
    std::optional<double> busyPercentage(std::uint64_t idleMilliseconds, double now);

    /// Forgets the last sample: the next one counts as the first.
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
