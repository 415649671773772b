// SPDX-License-Identifier: MIT
// A dispatch in virtual time: a test turns the clock and runs the queues by hand.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include "platform/dispatch.h"
#include "platform/timer_queue.h"

namespace tarnwick::platform::testing {

/// Nothing sleeps and no thread is made: the test's thread is the main thread and, while it runs
/// detached work, the background. Timers wake it as an event loop would, as late as their
/// tolerances allow. Work that is being run may run other work, as if it took that long itself.
/// async() and detached() may be called from any thread.
class ManualDispatch final : public Dispatch {
 public:
    /// How detached work is run.
    enum class Background {
        /// Only runDetached() and runNextDetached() run it.
        byHand,
        /// runMain() and advance() run it, after the main queue.
        automatic,
    };

    explicit ManualDispatch(Background background = Background::automatic, double startTime = 0);

    double now() const override { return now_; }
    void async(std::function<void()> work) override;
    void asyncAfter(double seconds, std::function<void()> work) override;
    bool detached(std::function<void()> work) override;
    std::unique_ptr<Timer> scheduleRepeating(double interval,
                                             std::function<void()> handler) override;

    void setBackground(Background background) { background_ = background; }
    /// Whether detached() refuses, as where the system starts no thread.
    void refuseDetached(bool refuses) { refusesDetached_ = refuses; }

    /// Runs the main queue until it is empty, including work that is added meanwhile. With an
    /// automatic background it also runs the detached work, in turns, until both are empty.
    void runMain();
    /// Runs one turn: the work that is in the main queue now, but no work that is added meanwhile.
    void runMainTurn();
    /// Runs the oldest detached work that waits. False when there was none.
    bool runNextDetached();
    /// Runs the detached work that waits now.
    void runDetached();

    /// Advances the clock. It stops at each moment when a timer can wait no longer, fires the
    /// timers that are due, and runs the work that follows from that. Runs the main queue first, so
    /// that earlier requests are finished.
    void advance(double seconds);
    /// Turns the clock while the machine is asleep or the background waits: no timer fires before
    /// the next advance().
    void sleep(double seconds) { now_ += seconds; }

    /// Work waiting in the main queue.
    std::size_t mainPending() const;
    /// Detached work waiting.
    std::size_t detachedPending() const;
    /// How many times async() was called.
    std::size_t asyncCount() const;
    /// How many times detached() took work.
    std::size_t detachedCount() const;
    /// How many times timers woke the main thread.
    std::size_t wakeUps() const { return wakeUps_; }
    /// Whether detached work is running: the caller then acts as the background.
    bool isInBackground() const { return inBackground_; }

 private:
    using Queue = std::deque<std::function<void()>>;

    /// Removes the oldest work of `queue` and returns it; empty if there is none.
    std::function<void()> take(Queue& queue);

    double now_;
    Background background_;
    bool inBackground_ = false;
    bool refusesDetached_ = false;
    std::size_t wakeUps_ = 0;
    TimerQueue timers_;
    mutable std::mutex lock_;
    // Guarded by lock_.
    Queue main_;
    Queue detached_;
    std::size_t asyncCount_ = 0;
    std::size_t detachedCount_ = 0;
};

}  // namespace tarnwick::platform::testing
