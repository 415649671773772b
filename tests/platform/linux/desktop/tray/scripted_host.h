// SPDX-License-Identifier: MIT
// A tray host that does what a test says and records what it receives.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <utility>

namespace tarnwick::platform::testing {

/// Owns the watcher's name from begin() to end().
class ScriptedHost final : public QDBusVirtualObject {
    Q_OBJECT

 public:
    /// Listens to items on `bus` at once, but is not a watcher before begin().
    explicit ScriptedHost(QDBusConnection bus);
    ~ScriptedHost() override;

    void begin();
    void end();

    /// Announces that a host came or went.
    /// `arguments` are those of the signal; some watchers name the host.
    void announceHost(bool there, const QVariantList& arguments = {});

    /// Calls a method of the item that registered last.
    QDBusMessage call(const QString& interface, const QString& member,
                      const QVariantList& arguments, const QString& path = "/StatusNotifierItem");
    QDBusMessage callItem(const QString& member, const QVariantList& arguments);
    /// Fetches all properties, as hosts do. Signals that were sent earlier are then in
    /// `signalNames`.
    QVariantMap properties();

    /// Names by which items registered, in order.
    QStringList registered;
    /// Names of the item's signals in order, and their arguments.
    QStringList signalNames;
    QList<QVariantList> signalArguments;
    /// What the watcher says about its hosts.
    bool hasHost = true;
    /// How many registrations to refuse.
    int refusals = 0;

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private slots:
    void heard(const QDBusMessage& signal);

 private:
    QDBusConnection bus_;
    bool begun_ = false;
};

}  // namespace tarnwick::platform::testing
