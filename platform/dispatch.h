// SPDX-License-Identifier: MIT
// The main queue, timers on it, and work in the background.
#pragma once

#include <functional>
#include <memory>

namespace tarnwick::platform {

/// A repeating timer on the main thread. It never fires early.
///
/// Its fire times lie one interval apart, counted from the first fire time; a late firing does not
/// move them. If several fire times pass unnoticed (the machine slept, the thread was busy), one
/// firing makes up for all of them. Destroying the timer invalidates it.
class Timer {
 public:
    virtual ~Timer() = default;

    /// When it fires next, in seconds of Dispatch::now().
    virtual double fireTime() const = 0;
    /// Moves the next firing; later ones follow one interval apart from there.
    virtual void setFireTime(double seconds) = 0;
    /// How late it may fire, in seconds, so that it can share a wake-up with others; 0 at first.
    virtual double tolerance() const = 0;
    virtual void setTolerance(double seconds) = 0;
    /// Never fires again.
    virtual void invalidate() = 0;
};

class Dispatch {
 public:
    virtual ~Dispatch() = default;

    /// Seconds of the clock that timers follow.
    virtual double now() const = 0;
    /// Runs `work` on a later turn of the main queue, in the order of the calls. Any thread.
    virtual void async(std::function<void()> work) = 0;
    /// Runs `work` on the main queue, `seconds` from now or later. Main thread.
    virtual void asyncAfter(double seconds, std::function<void()> work) = 0;
    /// Runs `work` off the main thread at utility priority. Work that blocks does not hold up
    /// other work. False if the system starts no thread for it now: the work is dropped, and a
    /// later call tries again. Any thread.
    virtual bool detached(std::function<void()> work) = 0;
    /// A timer that first fires one interval (seconds, above 0) from now. Main thread.
    virtual std::unique_ptr<Timer> scheduleRepeating(double interval,
                                                     std::function<void()> handler) = 0;
};

}  // namespace tarnwick::platform
