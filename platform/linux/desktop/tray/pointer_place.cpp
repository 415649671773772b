#include "platform/linux/desktop/tray/pointer_place.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace tarnwick::platform {
namespace {

// A bar is no higher than this share of its width, or it is as short as the few icons in it, and
// then no higher than this, in points.
constexpr int kBarShare = 4;
constexpr int kShortBarHeight = 64;

bool isBar(const QSize& window) {
    return window.height() * kBarShare <= window.width() ||
           (window.height() < window.width() && window.height() <= kShortBarHeight);
}

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};

struct PointerAndWindow {
    QPoint pointer;
    QRect window;
};

/// In the pixels of the display.
std::optional<PointerAndWindow> windowUnderPointer(xcb_connection_t* connection) {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const std::unique_ptr<xcb_query_pointer_reply_t, Free> pointer(
        xcb_query_pointer_reply(connection, xcb_query_pointer(connection, root), nullptr));
    if (pointer == nullptr || pointer->child == XCB_NONE) {
        return std::nullopt;
    }
    const std::unique_ptr<xcb_get_geometry_reply_t, Free> window(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, pointer->child), nullptr));
    if (window == nullptr) {
        return std::nullopt;
    }
    return PointerAndWindow{{pointer->root_x, pointer->root_y},
                            {window->x, window->y, window->width, window->height}};
}

}  // namespace

QRect placeInWindow(const QPoint& pointer, const QRect& window) {
    if (!window.contains(pointer) || !isBar(window.size())) {
        return {pointer, QSize(1, 1)};
    }
    return {pointer.x(), window.top(), 1, window.height()};
}

std::optional<QRect> placeUnderPointer() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t* connection = x11 == nullptr ? nullptr : x11->connection();
    if (connection == nullptr) {
        return std::nullopt;
    }
    const QPoint pointer = QCursor::pos();
    const std::optional<PointerAndWindow> found = windowUnderPointer(connection);
    if (!found) {
        return QRect(pointer, QSize(1, 1));
    }
    // A screen's points are larger than its pixels by its scale and share its corner only, so the
    // window is measured from the pointer.
    const QScreen* screen = QGuiApplication::screenAt(pointer);
    const qreal scale = screen == nullptr ? 1 : screen->devicePixelRatio();
    const QPointF corner = QPointF(found->window.topLeft() - found->pointer) / scale;
    const QSizeF size = QSizeF(found->window.size()) / scale;
    return placeInWindow(pointer, QRectF(pointer + corner, size).toAlignedRect());
}

}  // namespace tarnwick::platform
