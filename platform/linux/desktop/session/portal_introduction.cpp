// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/portal_introduction.h"

#include <QDBusMessage>
#include <QVariantMap>
#include <utility>

#include "platform/linux/desktop/session/bus_calls.h"
#include "platform/linux/identifier.h"

namespace tarnwick::platform {

void introduceToPortal(const QDBusConnection& bus, QObject* owner, std::function<void()> then) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
        "org.freedesktop.host.portal.Registry", "Register");
    call.setArguments({QString(kIdentifier), QVariantMap()});
    callAsync(bus, call, "", owner, [then = std::move(then)](const BusArguments&) { then(); });
}

}  // namespace tarnwick::platform
