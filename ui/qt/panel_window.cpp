#include "ui/qt/panel_window.h"

#include <utility>

#include "ui/qt/compositor.h"
#include "ui/qt/panel_popup.h"

namespace tarnwick::qt {

PanelWindow::PanelWindow(MenuBarView& view, const Theme& theme, platform::Dispatch& dispatch)
    : view_(view), theme_(theme), dispatch_(dispatch), motion_(std::make_shared<Motion>(dispatch)) {
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
        theme_, view_.appear(), [this](PanelAction action) { view_.perform(action); },
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
        popup_->hide();
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
