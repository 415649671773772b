// A tray host that does what a test says and remembers what it heard.
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
    /// Listens to items on `bus` at once, but is no watcher yet.
    explicit ScriptedHost(QDBusConnection bus);
    ~ScriptedHost() override;

    void begin();
    void end();

    /// Tells whoever follows that a host came or went.
    void announceHost(bool there);

    /// A call of the item that registered last.
    QDBusMessage call(const QString& interface, const QString& member,
                      const QVariantList& arguments, const QString& path = "/StatusNotifierItem");
    QDBusMessage callItem(const QString& member, const QVariantList& arguments);
    /// All properties, as hosts fetch them; signals sent before are in `signalNames` by then.
    QVariantMap properties();

    /// Names by which items registered, in order.
    QStringList registered;
    /// Names of the item's signals in order, and their arguments.
    QStringList signalNames;
    QList<QVariantList> signalArguments;
    /// What the watcher says about its hosts.
    bool hasHost = true;
    /// That many registrations are refused.
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
