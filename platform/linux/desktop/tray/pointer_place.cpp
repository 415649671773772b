// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/pointer_place.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include "platform/qt/x11.h"

namespace tarnwick::platform {
namespace {

// A window counts as a bar if it is at most this share of its width high. A short bar with few
// icons counts if it is wider than high and at most kShortBarHeight points high.
constexpr int kBarShare = 4;
constexpr int kShortBarHeight = 64;

bool isBar(const QSize& window) {
    return window.height() * kBarShare <= window.width() ||
           (window.height() < window.width() && window.height() <= kShortBarHeight);
}

struct PointerAndWindow {
    QPoint pointer;
    QRect window;
};

/// In pixels of the display.
std::optional<PointerAndWindow> windowUnderPointer(xcb_connection_t* connection) {
    const x11::Reply<xcb_query_pointer_reply_t> pointer(xcb_query_pointer_reply(
        connection, xcb_query_pointer(connection, x11::roots(connection).front()), nullptr));
    if (pointer == nullptr || pointer->child == XCB_NONE) {
        return std::nullopt;
    }
    const x11::Reply<xcb_get_geometry_reply_t> window(
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
    xcb_connection_t* connection = x11::connection();
    if (connection == nullptr) {
        return std::nullopt;
    }
    const QPoint pointer = QCursor::pos();
    const std::optional<PointerAndWindow> found = windowUnderPointer(connection);
    if (!found) {
        return QRect(pointer, QSize(1, 1));
    }
    // A screen's points and pixels share only its corner, because a point is larger by the screen's
    // scale. So the window is measured from the pointer.
    const QScreen* screen = QGuiApplication::screenAt(pointer);
    const qreal scale = screen == nullptr ? 1 : screen->devicePixelRatio();
    const QPointF corner = QPointF(found->window.topLeft() - found->pointer) / scale;
    const QSizeF size = QSizeF(found->window.size()) / scale;
    return placeInWindow(pointer, QRectF(pointer + corner, size).toAlignedRect());
}

}  // namespace tarnwick::platform
