// The main queue, the main run loop's timers and a queue of lower priority.
#pragma once

#include "platform/dispatch.h"

namespace tarnwick::platform {

/// The main thread runs the application's event loop. Timers are `NSTimer`s of its default mode.
class MacDispatch final : public Dispatch {
 public:
    /// Seconds since the machine was started, without those that it slept: nobody sets this clock.
    double now() const override;
    void async(std::function<void()> work) override;
    void asyncAfter(double seconds, std::function<void()> work) override;
    void detached(std::function<void()> work) override;
    std::unique_ptr<Timer> scheduleRepeating(double interval,
                                             std::function<void()> handler) override;
};

}  // namespace tarnwick::platform
