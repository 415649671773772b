// SPDX-License-Identifier: MIT
#include "ui/qt/foreign_activation.h"

#include <QGuiApplication>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "platform/qt/x11.h"

namespace tarnwick::qt {
namespace {

bool isOurs(std::uint32_t window) {
    const QWindowList windows = QGuiApplication::topLevelWindows();
    return std::any_of(windows.begin(), windows.end(), [window](const QWindow* each) {
        return each->handle() != nullptr && each->winId() == window;
    });
}

}  // namespace

ForeignActivation::ForeignActivation(std::function<void()> activated)
    : activated_(std::move(activated)) {
    if (xcb_connection_t* connection = x11::connection()) {
        root_ = x11::roots(connection).front();
        property_ = x11::atom(connection, "_NET_ACTIVE_WINDOW");
        activeAtFirst_ = activeWindow();
        // No event selection is needed: the toolkit already listens to the root window's
        // properties.
        qGuiApp->installNativeEventFilter(this);
    }
}

ForeignActivation::~ForeignActivation() = default;

std::uint32_t ForeignActivation::activeWindow() const {
    xcb_connection_t* connection = x11::connection();
    const x11::Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, root_, property_, XCB_ATOM_WINDOW, 0, 1),
        nullptr));
    if (reply == nullptr || xcb_get_property_value_length(reply.get()) < 4) {
        return XCB_NONE;
    }
    return *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
}

bool ForeignActivation::nativeEventFilter(const QByteArray&, void* message, qintptr*) {
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    constexpr std::uint8_t kSentByAClient = 0x80;
    if ((event->response_type & ~kSentByAClient) != XCB_PROPERTY_NOTIFY) {
        return false;
    }
    const auto* change = static_cast<const xcb_property_notify_event_t*>(message);
    if (change->window != root_ || change->atom != property_) {
        return false;
    }
    // For a moment between two active windows there may be none.
    const std::uint32_t active = activeWindow();
    if (active != XCB_NONE && active != activeAtFirst_ && !isOurs(active)) {
        activated_();
    }
    return false;
}

}  // namespace tarnwick::qt
