// SPDX-License-Identifier: MIT
// Opens other applications, and reports when the machine wakes.
#pragma once

#include <functional>
#include <memory>

namespace tarnwick::platform {

/// Opens the system's own monitor; nothing happens where there is none. Main thread.
void openActivityMonitor();

/// Calls `didWake` on the main thread each time the machine has woken from sleep, while it lives.
class WakeNotification {
 public:
    explicit WakeNotification(std::function<void()> didWake);
    WakeNotification(const WakeNotification&) = delete;
    WakeNotification& operator=(const WakeNotification&) = delete;
    ~WakeNotification();

 private:
    struct Observer;

    std::unique_ptr<Observer> observer_;
};

}  // namespace tarnwick::platform
