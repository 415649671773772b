// SPDX-License-Identifier: MIT
#include "ui/qt/panel_window.h"

#include <cstdlib>
#include <string>
#include <utility>

#include "platform/qt/x11.h"
#include "ui/qt/panel_popup.h"

namespace tarnwick::qt {
namespace {

/// True if a compositor blends translucent windows with what is behind them. On X11: while any
/// program owns the compositing manager's selection; without X11 always. Checked at each call.
bool hasCompositor() {
    xcb_connection_t* connection = x11::connection();
    if (connection == nullptr) {
        return true;
    }
    // The number in "host:display.number"; without one the server's first screen is meant.
    int screen = 0;
    int display = 0;
    char* host = nullptr;
    if (xcb_parse_display(nullptr, &host, &display, &screen) != 0) {
        std::free(host);
    }
    return x11::selectionOwner(connection, "_NET_WM_CM_S" + std::to_string(screen)) != XCB_NONE;
}

}  // namespace

PanelWindow::PanelWindow(MenuBarView& view, const Theme& theme, platform::Dispatch& dispatch,
                         SurfaceOf surfaceOf)
    : view_(view),
      theme_(theme),
      dispatch_(dispatch),
      surfaceOf_(std::move(surfaceOf)),
      motion_(std::make_shared<Motion>(dispatch)) {
    view_.setPageObserver([this](const Page& page) { pageChanged(page); });
}

PanelWindow::~PanelWindow() {
    view_.setPageObserver(nullptr);
    if (popup_ != nullptr) {
        popup_->disconnect(this);
        view_.disappear();
        delete popup_;
    }
}

bool PanelWindow::isOpen() const {
    return popup_ != nullptr;
}

void PanelWindow::open(const QRect& anchor) {
    if (isOpen()) {
        return;
    }
    popup_ = new PanelPopup(
        theme_, view_.appear(), [this](PanelAction action) { view_.perform(action); }, surfaceOf_(),
        hasCompositor(), motion_);
    shownTab_ = view_.activeTab();
    popup_->setCancelHandler([this] { return view_.cancel(); });
    connect(popup_, &PanelPopup::hidden, this, &PanelWindow::popupHidden);
    popup_->popUp(anchor);
}

void PanelWindow::pageChanged(const Page& page) {
    if (popup_ == nullptr) {
        return;
    }
    if (std::exchange(shownTab_, view_.activeTab()) == view_.activeTab()) {
        popup_->setPage(page);
    } else {
        popup_->turnTo(page, view_.entryAction());
    }
}

void PanelWindow::close() {
    if (popup_ != nullptr) {
        popup_->putAway();
    }
}

void PanelWindow::toggle(const QRect& anchor) {
    dismissedAt_ = -1;
    if (isOpen()) {
        close();
    } else {
        open(anchor);
    }
}

void PanelWindow::click(const QRect& anchor) {
    const bool isSameClick =
        dismissedAt_ >= 0 && dispatch_.now() - dismissedAt_ < kSameClickInterval;
    if (isSameClick && !isOpen()) {
        dismissedAt_ = -1;
        return;
    }
    toggle(anchor);
}

// The pop-up is still handling one of its own events, so it is deleted later.
void PanelWindow::popupHidden() {
    PanelPopup* popup = popup_;
    popup_ = nullptr;
    dismissedAt_ = popup->wasDismissedByPress() ? dispatch_.now() : -1;
    // Queued, because the children of a widget are deleted after its destroyed().
    connect(popup, &QObject::destroyed, this, &PanelWindow::widgetsFreed, Qt::QueuedConnection);
    popup->deleteLater();
    view_.disappear();
}

}  // namespace tarnwick::qt
