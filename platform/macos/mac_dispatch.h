// The main queue, the main run loop's timers and a queue of lower priority.
#pragma once

#include "platform/dispatch.h"

namespace tarnwick::platform {

/// Requires: the main thread runs the application's event loop. Timers are `NSTimer`s in its
/// default mode.
class MacDispatch final : public Dispatch {
 public:
    /// Seconds since the start of the machine without the time asleep. Clock changes do not affect
    /// it.
    double now() const override;
    void async(std::function<void()> work) override;
    void asyncAfter(double seconds, std::function<void()> work) override;
    /// Never refused: the system keeps the work until it has a thread.
    bool detached(std::function<void()> work) override;
    std::unique_ptr<Timer> scheduleRepeating(double interval,
                                             std::function<void()> handler) override;
};

}  // namespace tarnwick::platform
