// SPDX-License-Identifier: MIT
#include "tests/platform/linux/desktop/tray/scripted_host.h"

#include <QDBusArgument>
#include <QDBusVariant>

#include "tests/platform/linux/desktop/private_bus.h"

namespace tarnwick::platform::testing {
namespace {

constexpr auto kService = "org.kde.StatusNotifierWatcher";
constexpr auto kPath = "/StatusNotifierWatcher";

}  // namespace

ScriptedHost::ScriptedHost(QDBusConnection bus) : bus_(std::move(bus)) {
    bus_.connect("", "/StatusNotifierItem", "org.kde.StatusNotifierItem", "", this,
                 SLOT(heard(QDBusMessage)));
}

ScriptedHost::~ScriptedHost() {
    end();
    bus_.disconnect("", "/StatusNotifierItem", "org.kde.StatusNotifierItem", "", this,
                    SLOT(heard(QDBusMessage)));
}

void ScriptedHost::begin() {
    bus_.registerVirtualObject(kPath, this);
    bus_.registerService(kService);
    begun_ = true;
}

void ScriptedHost::end() {
    if (std::exchange(begun_, false)) {
        bus_.unregisterService(kService);
        bus_.unregisterObject(kPath);
    }
}

void ScriptedHost::announceHost(bool there, const QVariantList& arguments) {
    hasHost = there;
    QDBusMessage signal = QDBusMessage::createSignal(
        kPath, kService, there ? "StatusNotifierHostRegistered" : "StatusNotifierHostUnregistered");
    signal.setArguments(arguments);
    bus_.send(signal);
}

QDBusMessage ScriptedHost::call(const QString& interface, const QString& member,
                                const QVariantList& arguments, const QString& path) {
    QDBusMessage message = QDBusMessage::createMethodCall(
        registered.isEmpty() ? QString("none.registered") : registered.last(), path, interface,
        member);
    message.setArguments(arguments);
    return ask(bus_, message);
}

QDBusMessage ScriptedHost::callItem(const QString& member, const QVariantList& arguments) {
    return call("org.kde.StatusNotifierItem", member, arguments);
}

QVariantMap ScriptedHost::properties() {
    const QDBusMessage answer =
        call("org.freedesktop.DBus.Properties", "GetAll", {QString("org.kde.StatusNotifierItem")});
    return qdbus_cast<QVariantMap>(answer.arguments().value(0));
}

QString ScriptedHost::introspect(const QString&) const {
    return {};
}

bool ScriptedHost::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (message.member() == "RegisterStatusNotifierItem") {
        if (refusals > 0) {
            --refusals;
            return false;
        }
        registered.append(message.arguments().value(0).toString());
        connection.send(message.createReply());
        return true;
    }
    if (message.member() == "Get" &&
        message.arguments().value(1).toString() == "IsStatusNotifierHostRegistered") {
        connection.send(message.createReply(QVariant::fromValue(QDBusVariant(hasHost))));
        return true;
    }
    return false;
}

void ScriptedHost::heard(const QDBusMessage& signal) {
    signalNames.append(signal.member());
    signalArguments.append(signal.arguments());
}

}  // namespace tarnwick::platform::testing
