#include "platform/linux/desktop/session/bus_calls.h"

#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <utility>

namespace tarnwick::platform {

void callAsync(const QDBusConnection& bus, const QDBusMessage& call, QObject* owner,
               std::function<void(const QDBusMessage& answer)> answered) {
    auto* pending = new QDBusPendingCallWatcher(bus.asyncCall(call), owner);
    QObject::connect(pending, &QDBusPendingCallWatcher::finished, owner,
                     [answered = std::move(answered)](QDBusPendingCallWatcher* self) {
                         self->deleteLater();
                         answered(self->reply());
                     });
}

QDBusMessage busCall(const QString& method, const QVariantList& arguments) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method);
    call.setArguments(arguments);
    return call;
}

}  // namespace tarnwick::platform
