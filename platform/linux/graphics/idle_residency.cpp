#include "platform/linux/graphics/idle_residency.h"

#include <algorithm>

namespace tarnwick::platform {

namespace {

// Shortest window in seconds. In a shorter one the counter's step of one millisecond would be
// visible.
constexpr double kShortestWindow = 0.2;
// The counter may lead the clock by this much, because they are read one after the other and run on
// two oscillators.
constexpr double kToleratedLead = 1.02;
constexpr double kToleratedLeadMilliseconds = 20;

/// Increase of the counter. A 32-bit counter may have wrapped once.
std::uint64_t advance(std::uint64_t from, std::uint64_t to) {
    return to >= from ? to - from : static_cast<std::uint32_t>(to - from);
}

}  // namespace

std::optional<double> IdleResidency::busyPercentage(std::uint64_t idleMilliseconds, double now) {
    if (previous_ && now - previous_->moment < kShortestWindow) {
        return answer_;
    }
    const std::optional<Sample> previous = previous_;
    previous_ = {.idleMilliseconds = idleMilliseconds, .moment = now};
    answer_.reset();
    // A counter at 0 does not work: it says that the engine has never slept since the driver
    // started.
    if (!previous || idleMilliseconds == 0) {
        return answer_;
    }
    const double window = (now - previous->moment) * 1000;
    const auto idle = static_cast<double>(advance(previous->idleMilliseconds, idleMilliseconds));
    if (idle <= window * kToleratedLead + kToleratedLeadMilliseconds) {
        answer_ = std::max(0.0, 100 * (1 - idle / window));
    }
    return answer_;
}

void IdleResidency::forget() {
    previous_.reset();
    answer_.reset();
}

}  // namespace tarnwick::platform
