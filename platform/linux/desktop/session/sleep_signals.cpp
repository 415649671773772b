#include "platform/linux/desktop/session/sleep_signals.h"

#include <utility>

#include "platform/linux/desktop/session/bus_calls.h"

namespace tarnwick::platform {
namespace {

constexpr auto kService = "org.freedesktop.login1";
constexpr auto kPath = "/org/freedesktop/login1";
constexpr auto kInterface = "org.freedesktop.login1.Manager";

}  // namespace

SleepSignals::SleepSignals(QDBusConnection systemBus, std::function<void()> woke)
    : bus_(std::move(systemBus)), woke_(std::move(woke)) {
    if (bus_.isConnected()) {
        // No sender is named: the library would ask the bus for its owner and wait for the answer.
        bus_.connect("", kPath, kInterface, "PrepareForSleep", this,
                     SLOT(prepareForSleep(bool, QDBusMessage)));
    }
}

void SleepSignals::prepareForSleep(bool begins, const QDBusMessage& signal) {
    if (begins) {
        return;
    }
    // Any user of the machine can send such a signal; only the login manager's counts.
    callAsync(bus_, busCall("GetNameOwner", {QString(kService)}), this,
              [this, sender = signal.service()](const QDBusMessage& answer) {
                  if (answer.type() == QDBusMessage::ReplyMessage &&
                      answer.arguments().value(0).toString() == sender) {
                      woke_();
                  }
              });
}

}  // namespace tarnwick::platform
