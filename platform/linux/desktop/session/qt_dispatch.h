// The dispatch of a Qt program: its event loop, and threads for what may block.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "platform/dispatch.h"
#include "platform/linux/events/background_work.h"
#include "platform/timer_queue.h"

namespace tarnwick::platform {

/// The main thread is the one that makes it; it runs a Qt event loop. All timers share one timer
/// of the event loop, armed for the latest moment that the tolerances allow. Detached work that
/// is stuck when this is destroyed is left behind after `patience` and may still use the dispatch:
/// the program's own one must not be destroyed before the process ends.
class QtDispatch final : public Dispatch {
 public:
    explicit QtDispatch(std::chrono::milliseconds patience = std::chrono::milliseconds(250));
    QtDispatch(const QtDispatch&) = delete;
    QtDispatch& operator=(const QtDispatch&) = delete;
    /// What waits in the main queue is dropped.
    ~QtDispatch() override;

    /// CLOCK_MONOTONIC; stands still while the machine sleeps.
    double now() const override;
    void async(std::function<void()> work) override;
    void asyncAfter(double seconds, std::function<void()> work) override;
    void detached(std::function<void()> work) override;
    std::unique_ptr<Timer> scheduleRepeating(double interval,
                                             std::function<void()> handler) override;

 private:
    class MainQueue;
    class Alarm;

    std::unique_ptr<MainQueue> mainQueue_;
    std::unique_ptr<Alarm> alarm_;
    TimerQueue timers_;
    // Last, so that its threads are gone before what they call.
    BackgroundWork background_;
};

}  // namespace tarnwick::platform
