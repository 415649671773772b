// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/activation_token.h"

#include <QGuiApplication>
#include <QWindow>
#include <utility>

#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0) && QT_CONFIG(wayland)
#include <qpa/qplatformwindow_p.h>
#define TARNWICK_HAS_TOKENS
#endif

namespace tarnwick::platform {

bool requestActivationToken([[maybe_unused]] QObject* owner,
                            [[maybe_unused]] std::function<void(const QString& token)> made) {
#ifdef TARNWICK_HAS_TOKENS
    using Window = QNativeInterface::Private::QWaylandWindow;
    const auto* application = qGuiApp->nativeInterface<QNativeInterface::QWaylandApplication>();
    QWindow* active = QGuiApplication::focusWindow();
    auto* window = active == nullptr ? nullptr : active->nativeInterface<Window>();
    if (application == nullptr || window == nullptr) {
        return false;
    }
    QObject::connect(window, &Window::xdgActivationTokenCreated, owner, std::move(made),
                     Qt::SingleShotConnection);
    window->requestXdgActivationToken(application->lastInputSerial());
    return true;
#else
    return false;
#endif
}

}  // namespace tarnwick::platform
