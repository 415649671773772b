#include "platform/linux/desktop/session_bus.h"

#include <QByteArray>
#include <sys/stat.h>

namespace tarnwick::platform {
namespace {

bool isSocket(const QByteArray& path) {
    struct stat status {};
    return stat(path.constData(), &status) == 0 && S_ISSOCK(status.st_mode);
}

bool sessionHasBus() {
    if (!qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")) {
        return true;
    }
    const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
    return !runtime.isEmpty() && isSocket(runtime + "/bus");
}

}  // namespace

QDBusConnection sessionBus() {
    return sessionHasBus() ? QDBusConnection::sessionBus() : QDBusConnection("no session bus");
}

}  // namespace tarnwick::platform
