// SPDX-License-Identifier: MIT
// A message bus of the test's own.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <functional>

namespace tarnwick::platform::testing {

/// Runs the event loop until `condition` holds. False after a time limit that is so generous that
/// only a fault reaches it.
bool waitUntil(const std::function<bool()>& condition);

/// Makes the call while the event loop runs, so that the receiver can live in this thread. When it
/// returns, every signal that came before the answer has been delivered.
QDBusMessage ask(const QDBusConnection& bus, const QDBusMessage& call);

/// Starts a bus that knows no services, and ends it.
class PrivateBus {
 public:
    PrivateBus();
    ~PrivateBus();

    QString address() const { return address_; }
    /// Another connection, as another program would have.
    QDBusConnection connect();
    /// Ends the bus now.
    void end();

 private:
    QTemporaryDir folder_;
    QProcess daemon_;
    QString address_;
    QStringList connections_;
};

}  // namespace tarnwick::platform::testing
