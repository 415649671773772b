// SPDX-License-Identifier: MIT
// The machine waking from sleep.
#pragma once

#include <QDBusConnection>
#include <functional>

#include "platform/linux/desktop/session/service_signals.h"

namespace tarnwick::platform {

/// The login manager on the system bus sends the signal; without that bus or a login manager there
/// is none. Main thread. Never waits for the bus.
class SleepSignals final {
 public:
    /// `woke` is called on the main thread each time.
    SleepSignals(const QDBusConnection& systemBus, std::function<void()> woke);

 private:
    ServiceSignals manager_;
};

}  // namespace tarnwick::platform
