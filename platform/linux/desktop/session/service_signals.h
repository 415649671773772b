// SPDX-License-Identifier: MIT
// Signals of the program that owns a name on the bus.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <functional>
#include <optional>
#include <vector>

namespace tarnwick::platform {

/// Follows the owner of a name and passes on only signals from that owner: every program on a bus
/// can send any signal with any arguments. Main thread. Never waits for the bus.
class ServiceSignals final : public QObject {
    Q_OBJECT

 public:
    struct Signal {
        /// Path of the sending object; empty for any object.
        QString path;
        QString interface;
        QString member;
        /// Signature of the arguments. Signals with another signature are ignored. Absent: any
        /// arguments will do, because none is read.
        std::optional<QString> signature{};
    };

    /// `ownerChanged` gets the owner's unique name, empty for none: first once the bus has said who
    /// it is, then at each change, and when the connection to the bus is lost.
    ServiceSignals(QDBusConnection bus, const QString& service,
                   std::function<void(const QString& owner)> ownerChanged = {});

    /// Calls `heard` for each such signal from now on.
    void hear(const Signal& signal, std::function<void(const QDBusMessage& signal)> heard);

    /// The owner's unique name; empty when there is none or the bus has not answered yet.
    const QString& owner() const { return owner_; }

 private slots:
    void received(const QDBusMessage& signal);
    void disconnected();

 private:
    struct Subscription {
        Signal signal;
        std::function<void(const QDBusMessage& signal)> heard;
    };

    void setOwner(const QString& owner);

    QDBusConnection bus_;
    std::function<void(const QString& owner)> ownerChanged_;
    QDBusServiceWatcher watcher_;
    std::vector<Subscription> subscriptions_;
    QString owner_;
    bool isOwnerKnown_ = false;
};

}  // namespace tarnwick::platform
