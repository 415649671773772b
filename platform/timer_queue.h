// SPDX-License-Identifier: MIT
// The timers of a dispatch. The owner drives them: it asks for the next wake-up time and passes in
// the current time. The queue has no clock of its own, so the same code runs on an event loop and
// in virtual time.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/dispatch.h"

namespace tarnwick::platform {

/// Timers share wake-ups: the queue asks for a wake-up when the first timer can wait no longer; all
/// timers that are due by then fire together. No timer fires before its fire time.
///
/// Times are seconds of any clock that never goes back. Main thread only. Handlers may add, move
/// and invalidate timers, destroy the timer that is firing, and call runDue() again.
class TimerQueue {
 public:
    /// `nextWakeChanged`, where given, is called whenever nextWake() may have another value.
    explicit TimerQueue(std::function<void()> nextWakeChanged = nullptr);
    TimerQueue(const TimerQueue&) = delete;
    TimerQueue& operator=(const TimerQueue&) = delete;
    /// Every timer is invalidated. Their handles may be destroyed later.
    ~TimerQueue();

    /// A timer that fires first at `now` + `interval`, then one interval apart. An interval below
    /// a tenth of a millisecond is raised to that.
    [[nodiscard]] std::unique_ptr<Timer> scheduleRepeating(double now, double interval,
                                                           std::function<void()> handler);
    /// Runs `handler` once, at `fireTime` or later; has no tolerance.
    void scheduleOnce(double fireTime, std::function<void()> handler);

    /// The latest time at which runDue() must be called next: the earliest sum of fire time and
    /// tolerance over all timers. Absent without timers.
    std::optional<double> nextWake() const;
    /// Fires every timer with a fire time up to `now`, in the order of the fire times; timers with
    /// the same fire time fire in the order of creation. A timer that a handler adds or makes due
    /// waits for the next call.
    void runDue(double now);

 private:
    struct Entry;
    struct State;
    class Handle;

    std::shared_ptr<State> state_;
};

}  // namespace tarnwick::platform
