// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/session_keyboard.h"

#include <QAbstractEventDispatcher>
#include <QAbstractNativeEventFilter>
#include <QGuiApplication>
#include <QStandardPaths>
#include <functional>
#include <qpa/qplatformnativeinterface.h>
#include <utility>

#include "platform/linux/desktop/keyboard/portal_hot_keys.h"
#include "platform/linux/desktop/keyboard/wayland_keyboard_layout.h"
#include "platform/linux/desktop/keyboard/x11_hot_keys.h"
#include "platform/linux/desktop/keyboard/x11_keyboard_layout.h"
#include "platform/linux/events/standard_error.h"
#include "platform/linux/identifier.h"
#include "platform/qt/x11.h"

namespace tarnwick::platform {
namespace {

/// Sees the events before the toolkit does.
class FilteringHotKeys final : public X11HotKeys, private QAbstractNativeEventFilter {
 public:
    FilteringHotKeys(xcb_connection_t* connection, Dispatch& dispatch)
        : X11HotKeys(connection, dispatch) {
        qApp->installNativeEventFilter(this);
    }

 private:
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr*) override {
        return type == "xcb_generic_event_t" &&
               handle(*static_cast<const xcb_generic_event_t*>(message));
    }
};

/// Reads its events whenever the event loop is idle.
class IdlingLayout final : public WaylandKeyboardLayout {
 public:
    explicit IdlingLayout(wl_display* display)
        : WaylandKeyboardLayout(display),
          idle_(QObject::connect(QAbstractEventDispatcher::instance(),
                                 &QAbstractEventDispatcher::aboutToBlock,
                                 [this] { takeEvents(); })) {}
    ~IdlingLayout() override { QObject::disconnect(idle_); }

 private:
    QMetaObject::Connection idle_;
};

/// In the background: a folder of applications may lie on a disk that hangs.
void findDesktopEntry(Dispatch& dispatch, std::function<void(bool isThere)> found) {
    dispatch.detached([&dispatch, found = std::move(found)] {
        const QString entry = QStandardPaths::locate(QStandardPaths::ApplicationsLocation,
                                                     QString(kIdentifier) + ".desktop");
        dispatch.async([found, isThere = !entry.isEmpty()] { found(isThere); });
    });
}

bool isWaylandPlatform() {
    return QGuiApplication::platformName().startsWith("wayland");
}

}  // namespace

bool isWaylandSession(std::string_view sessionType, std::string_view waylandDisplay) {
    if (sessionType == "x11" || sessionType == "wayland") {
        return sessionType == "wayland";
    }
    return !waylandDisplay.empty();
}

bool isUnderCompositor() {
    return isWaylandPlatform() || isWaylandSession(qgetenv("XDG_SESSION_TYPE").toStdString(),
                                                   qgetenv("WAYLAND_DISPLAY").toStdString());
}

std::unique_ptr<HotKeys> makeHotKeys(QDBusConnection bus, KeysymLayout& layout,
                                     Dispatch& dispatch) {
    // An X server beside a compositor grants grabs, but knows of no key that is pressed in a window
    // of the compositor: there only the portal can tell.
    if (isUnderCompositor()) {
        return std::make_unique<PortalHotKeys>(
            bus, layout,
            PortalHotKeys::Options{.notice = notice, .findEntry = [&dispatch](auto found) {
                                       findDesktopEntry(dispatch, std::move(found));
                                   }});
    }
    if (xcb_connection_t* connection = x11::connection()) {
        return std::make_unique<FilteringHotKeys>(connection, dispatch);
    }
    return std::make_unique<NullHotKeys>();
}

std::unique_ptr<KeysymLayout> makeKeyboardLayout() {
    if (xcb_connection_t* connection = x11::connection()) {
        return std::make_unique<X11KeyboardLayout>(connection);
    }
    // Only later versions of the toolkit give their connection through the public interface.
    QPlatformNativeInterface* native = QGuiApplication::platformNativeInterface();
    if (isWaylandPlatform() && native != nullptr) {
        return std::make_unique<IdlingLayout>(
            static_cast<wl_display*>(native->nativeResourceForIntegration("wl_display")));
    }
    return std::make_unique<NullKeysymLayout>();
}

}  // namespace tarnwick::platform
