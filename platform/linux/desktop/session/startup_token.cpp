#include "platform/linux/desktop/session/startup_token.h"

#include <QGuiApplication>
#include <qpa/qplatformnativeinterface.h>
#include <unistd.h>

namespace tarnwick::platform {

std::vector<std::string> startupToken() {
    QPlatformNativeInterface* native = QGuiApplication::platformNativeInterface();
    if (native == nullptr || QGuiApplication::platformName() != "xcb") {
        return {};
    }
    // The X server's time of the last press, which the interface hands out as an address.
    const auto time = reinterpret_cast<quintptr>(
        native->nativeResourceForScreen("appusertime", QGuiApplication::primaryScreen()));
    if (time == 0) {
        return {};
    }
    static unsigned number = 0;
    return {"DESKTOP_STARTUP_ID=tarnwick-" + std::to_string(::getpid()) + '-' +
            std::to_string(++number) + "_TIME" + std::to_string(time)};
}

}  // namespace tarnwick::platform
