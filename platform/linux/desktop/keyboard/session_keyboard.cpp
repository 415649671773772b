#include "platform/linux/desktop/keyboard/session_keyboard.h"

#include <QAbstractEventDispatcher>
#include <QAbstractNativeEventFilter>
#include <QGuiApplication>
#include <qpa/qplatformnativeinterface.h>
#include <xcb/xcb.h>

#include "platform/linux/desktop/keyboard/portal_hot_keys.h"
#include "platform/linux/desktop/keyboard/wayland_keyboard_layout.h"
#include "platform/linux/desktop/keyboard/x11_hot_keys.h"
#include "platform/linux/desktop/keyboard/x11_keyboard_layout.h"

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

/// Takes in its events whenever the event loop has nothing else to do.
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

xcb_connection_t* x11Connection() {
    const auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

bool isWaylandPlatform() {
    return QGuiApplication::platformName().startsWith("wayland");
}

}  // namespace

HotKeySource hotKeySource(bool hasX11, bool isWayland) {
    if (isWayland) {
        return HotKeySource::portal;
    }
    return hasX11 ? HotKeySource::x11 : HotKeySource::none;
}

bool isWaylandSession(std::string_view sessionType, std::string_view waylandDisplay) {
    if (sessionType == "x11" || sessionType == "wayland") {
        return sessionType == "wayland";
    }
    return !waylandDisplay.empty();
}

std::unique_ptr<HotKeys> makeHotKeys(QDBusConnection bus, KeysymLayout& layout,
                                     Dispatch& dispatch) {
    xcb_connection_t* x11 = x11Connection();
    const bool isWayland =
        isWaylandPlatform() || isWaylandSession(qgetenv("XDG_SESSION_TYPE").toStdString(),
                                                qgetenv("WAYLAND_DISPLAY").toStdString());
    switch (hotKeySource(x11 != nullptr, isWayland)) {
        case HotKeySource::x11:
            return std::make_unique<FilteringHotKeys>(x11, dispatch);
        case HotKeySource::portal:
            return std::make_unique<PortalHotKeys>(bus, layout);
        case HotKeySource::none:
            break;
    }
    return std::make_unique<NullHotKeys>();
}

std::unique_ptr<KeysymLayout> makeKeyboardLayout() {
    if (xcb_connection_t* x11 = x11Connection()) {
        return std::make_unique<X11KeyboardLayout>(x11);
    }
    // The toolkit's public interface names its connection only from a later version on.
    QPlatformNativeInterface* native = QGuiApplication::platformNativeInterface();
    if (isWaylandPlatform() && native != nullptr) {
        return std::make_unique<IdlingLayout>(
            static_cast<wl_display*>(native->nativeResourceForIntegration("wl_display")));
    }
    return std::make_unique<NullKeysymLayout>();
}

}  // namespace tarnwick::platform
