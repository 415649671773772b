// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/session_bus.h"

#include <QByteArray>
#include <sys/stat.h>

namespace tarnwick::platform {
namespace {

constexpr auto kAddress = "DBUS_SESSION_BUS_ADDRESS";
// Not the name of any transport. Other programs write it there for the same purpose.
constexpr auto kNoBus = "disabled:";

bool isSocket(const QByteArray& path) {
    struct stat status {};
    return stat(path.constData(), &status) == 0 && S_ISSOCK(status.st_mode);
}

bool sessionHasBus() {
    if (!qEnvironmentVariableIsEmpty(kAddress)) {
        return true;
    }
    const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
    return !runtime.isEmpty() && isSocket(runtime + "/bus");
}

}  // namespace

void keepBusFromBeingStarted() {
    if (!sessionHasBus()) {
        qputenv(kAddress, kNoBus);
    }
}

QDBusConnection sessionBus() {
    keepBusFromBeingStarted();
    return qgetenv(kAddress) == kNoBus ? QDBusConnection("no session bus")
                                       : QDBusConnection::sessionBus();
}

}  // namespace tarnwick::platform
