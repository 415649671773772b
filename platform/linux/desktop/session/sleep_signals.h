// The machine waking from sleep.
#pragma once

#include <QDBusConnection>
#include <functional>

#include "platform/linux/desktop/session/service_signals.h"

namespace tarnwick::platform {

/// Hears of it from the login manager on the system bus; never where there is no system bus or no
/// login manager. Main thread; never waits for the bus.
class SleepSignals final {
 public:
    /// `woke` is called on the main thread each time.
    SleepSignals(const QDBusConnection& systemBus, std::function<void()> woke);

 private:
    ServiceSignals manager_;
};

}  // namespace tarnwick::platform
