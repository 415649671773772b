// SPDX-License-Identifier: MIT
// A settings portal with the values that a test sets.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QMap>
#include <QStringList>
#include <QVariant>
#include <utility>

namespace tarnwick::platform::testing {

class ScriptedSettingsPortal final : public QDBusVirtualObject {
 public:
    static constexpr auto kPath = "/org/freedesktop/portal/desktop";
    static constexpr auto kInterface = "org.freedesktop.portal.Settings";

    explicit ScriptedSettingsPortal(QDBusConnection bus) : bus_(std::move(bus)) {}
    ~ScriptedSettingsPortal() override { end(); }

    void begin() {
        bus_.registerVirtualObject(kPath, this);
        bus_.registerService("org.freedesktop.portal.Desktop");
    }
    void end() {
        bus_.unregisterService("org.freedesktop.portal.Desktop");
        bus_.unregisterObject(kPath);
    }
    /// Announces a change, independent of `values`.
    void change(const QString& space, const QString& key, const QVariant& to) {
        QDBusMessage signal = QDBusMessage::createSignal(kPath, kInterface, "SettingChanged");
        signal.setArguments({space, key, QVariant::fromValue(QDBusVariant(to))});
        bus_.send(signal);
    }
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        const QVariantList arguments = message.arguments();
        if (message.member() == "Register") {
            names.append(arguments.value(0).toString());
            readsBeforeName = reads;
            return bus.send(message.createErrorReply("org.freedesktop.DBus.Error.UnknownMethod",
                                                     "No such interface"));
        }
        if (message.member() != "Read") {
            return false;
        }
        ++reads;
        const auto value =
            values.find(arguments.value(0).toString() + ' ' + arguments.value(1).toString());
        if (value == values.end()) {
            return bus.send(message.createErrorReply("org.freedesktop.portal.Error.NotFound",
                                                     "Requested setting not found"));
        }
        const QVariant inner = QVariant::fromValue(QDBusVariant(*value));
        return bus.send(message.createReply(QVariant::fromValue(QDBusVariant(inner))));
    }

    /// By space and key, with a blank between.
    QMap<QString, QVariant> values;
    int reads = 0;
    QStringList names;
    /// The number of reads when a name was last given.
    int readsBeforeName = 0;

 private:
    QDBusConnection bus_;
};

}  // namespace tarnwick::platform::testing
