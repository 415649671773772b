// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/bus_calls.h"

#include <QDBusError>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <utility>

namespace tarnwick::platform {

BusArguments argumentsOf(const QDBusMessage& message, const QString& signature) {
    if (message.type() == QDBusMessage::ErrorMessage || message.signature() != signature) {
        return std::nullopt;
    }
    return message.arguments();
}

void callAsync(const QDBusConnection& bus, const QDBusMessage& call, const QString& signature,
               QObject* owner, std::function<void(const BusArguments& answer)> answered) {
    auto* pending = new QDBusPendingCallWatcher(bus.asyncCall(call), owner);
    QObject::connect(pending, &QDBusPendingCallWatcher::finished, owner,
                     [signature, answered = std::move(answered)](QDBusPendingCallWatcher* self) {
                         self->deleteLater();
                         const QDBusMessage answer = self->reply();
                         if (signature.isEmpty() && answer.type() == QDBusMessage::ReplyMessage) {
                             answered(QVariantList());
                         } else {
                             answered(argumentsOf(answer, signature));
                         }
                     });
}

QVariant variantIn(const QVariant& value) {
    return value.value<QDBusVariant>().variant();
}

QString calledMethod(const QDBusMessage& call) {
    return call.member() + '(' + call.signature() + ')';
}

QDBusMessage noSuchMethod(const QDBusMessage& call) {
    return call.createErrorReply(QDBusError::UnknownMethod, "No method " + calledMethod(call));
}

QDBusMessage busCall(const QString& method, const QVariantList& arguments) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method);
    call.setArguments(arguments);
    return call;
}

}  // namespace tarnwick::platform
