// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/sleep_signals.h"

#include <utility>

#include "platform/linux/desktop/session/bus_calls.h"
namespace tarnwick::platform {

SleepSignals::SleepSignals(const QDBusConnection& systemBus, std::function<void()> woke)
    : manager_(systemBus, "org.freedesktop.login1") {
    manager_.hear({.path = "/org/freedesktop/login1",
                   .interface = "org.freedesktop.login1.Manager",
                   .member = "PrepareForSleep",
                   .signature = "b"},
                  [woke = std::move(woke)](const QDBusMessage& signal) {
                      if (const bool begins = signal.arguments().first().toBool(); !begins) {
                          woke();
                      }
                  });
}

}  // namespace tarnwick::platform
