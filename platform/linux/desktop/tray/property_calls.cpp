// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/property_calls.h"

#include <QDBusError>
#include <QDBusVariant>

#include "platform/linux/desktop/session/bus_calls.h"

namespace tarnwick::platform {
namespace {

QDBusMessage answer(const QDBusMessage& message, const QString& interface,
                    const QVariantMap& properties) {
    const QVariantList arguments = message.arguments();
    const QString asked = arguments.value(0).toString();
    const bool known = asked.isEmpty() || asked == interface;
    if (message.member() == "GetAll" && message.signature() == "s") {
        return message.createReply(QVariant(known ? properties : QVariantMap()));
    }
    if (message.member() == "Get" && message.signature() == "ss") {
        const QString name = arguments.value(1).toString();
        if (known && properties.contains(name)) {
            return message.createReply(QVariant::fromValue(QDBusVariant(properties.value(name))));
        }
        return message.createErrorReply(QDBusError::UnknownProperty, "No property " + name);
    }
    if (message.member() == "Set" && message.signature() == "ssv") {
        return message.createErrorReply(QDBusError::PropertyReadOnly, "Nothing can be set");
    }
    return noSuchMethod(message);
}

}  // namespace

bool answerPropertyCall(const QDBusMessage& message, const QDBusConnection& bus,
                        const QString& interface, const QVariantMap& properties) {
    if (message.interface() != "org.freedesktop.DBus.Properties") {
        return false;
    }
    bus.send(answer(message, interface, properties));
    return true;
}

}  // namespace tarnwick::platform
