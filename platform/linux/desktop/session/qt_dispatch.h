// SPDX-License-Identifier: MIT
// The dispatch of a Qt program: its event loop, and threads for work that may block.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "platform/dispatch.h"
#include "platform/linux/events/background_work.h"
#include "platform/timer_queue.h"

namespace tarnwick::platform {

/// The thread that creates it is the main thread, which runs a Qt event loop. All timers share one
/// timer of the event loop, armed for the latest moment that the tolerances allow.
///
/// The destructor waits at most `patience` for detached work; stuck work is left behind and may
/// still use the dispatch. Requires: the program's own dispatch is not destroyed before the process
/// ends.
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
    bool detached(std::function<void()> work) override;
    std::unique_ptr<Timer> scheduleRepeating(double interval,
                                             std::function<void()> handler) override;

 private:
    class MainQueue;
    class Alarm;

    std::unique_ptr<MainQueue> mainQueue_;
    std::unique_ptr<Alarm> alarm_;
    TimerQueue timers_;
    // Declared last, so that its threads end before the objects that they use are destroyed.
    BackgroundWork background_;
};

}  // namespace tarnwick::platform
