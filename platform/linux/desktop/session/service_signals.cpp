// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/service_signals.h"

#include <algorithm>
#include <utility>

#include "platform/linux/desktop/session/bus_calls.h"

namespace tarnwick::platform {

ServiceSignals::ServiceSignals(QDBusConnection bus, const QString& service,
                               std::function<void(const QString& owner)> ownerChanged)
    : bus_(std::move(bus)), ownerChanged_(std::move(ownerChanged)) {
    if (!bus_.isConnected()) {
        return;
    }
    watcher_.setConnection(bus_);
    watcher_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    watcher_.addWatchedService(service);
    connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) { setOwner(owner); });
    // The library itself sends this signal; it cannot come over the bus.
    bus_.connect("", "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected",
                 this, SLOT(disconnected()));
    callAsync(bus_, busCall("GetNameOwner", {service}), "s", this,
              [this](const BusArguments& answer) {
                  if (!isOwnerKnown_) {
                      setOwner(answer ? answer->first().toString() : QString());
                  }
              });
}

void ServiceSignals::hear(const Signal& signal,
                          std::function<void(const QDBusMessage& signal)> heard) {
    subscriptions_.push_back({signal, std::move(heard)});
    // No sender is named: the library would ask the bus for its owner and wait for the answer. The
    // slot takes the message: the library aborts when arguments do not fit a slot's types.
    bus_.connect("", signal.path, signal.interface, signal.member, this,
                 SLOT(received(QDBusMessage)));
}

void ServiceSignals::received(const QDBusMessage& signal) {
    if (owner_.isEmpty() || signal.service() != owner_) {
        return;
    }
    const auto subscription = std::ranges::find_if(subscriptions_, [&](const Subscription& each) {
        return signal.member() == each.signal.member &&
               signal.interface() == each.signal.interface &&
               (each.signal.path.isEmpty() || signal.path() == each.signal.path) &&
               (!each.signal.signature || signal.signature() == *each.signal.signature);
    });
    if (subscription != subscriptions_.end()) {
        subscription->heard(signal);
    }
}

void ServiceSignals::disconnected() {
    setOwner(QString());
}

void ServiceSignals::setOwner(const QString& owner) {
    isOwnerKnown_ = true;
    owner_ = owner;
    if (ownerChanged_) {
        ownerChanged_(owner);
    }
}

}  // namespace tarnwick::platform
