// SPDX-License-Identifier: MIT
// The panel while it is on screen.
#pragma once

#include <QScrollArea>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>

#include "ui/panel/page.h"
#include "ui/qt/double_click_guard.h"
#include "ui/qt/foreign_activation.h"
#include "ui/qt/panel_surface.h"
#include "ui/qt/panel_view.h"
#include "ui/qt/theme.h"

namespace tarnwick::qt {

/// A borderless window around a page, or a transparent one over the work area with the page in it.
/// If windows can be translucent the panel has smooth corners and a shadow; otherwise the window is
/// cut to shape.
///
/// A page that is higher than the screen scrolls: with the wheel, with the usual scrolling keys,
/// and to the button that gets the focus.
///
/// Escape, a press outside and the activation of another program's window hide it. The second press
/// of a double click that began inside does not, wherever the first press has left the pointer.
class PanelPopup final : public QWidget {
    Q_OBJECT

 public:
    /// The page's bars move with `motion`; without one they jump. A `surface` that covers the work
    /// area is translucent in any case.
    PanelPopup(const Theme& theme, const Page& page, PressHandler press, PanelSurface surface,
               bool isTranslucent, std::shared_ptr<Motion> motion = nullptr);

    void setPage(const Page& page) { view_->setPage(page); }
    /// Shows another page in the same place, scrolled to its top or to the button of `entry`. That
    /// button gets the focus; the focus is visible if a key led here.
    void turnTo(const Page& page, std::optional<PanelAction> entry);
    /// `handler` runs on Escape. If it returns true the panel stays; otherwise the panel hides.
    void setCancelHandler(std::function<bool()> handler) { cancel_ = std::move(handler); }
    /// Shows the panel beside `anchor` (screen coordinates). It stays there when its height
    /// changes.
    void popUp(const QRect& anchor);
    /// True if a press outside hid the panel, or something that a press outside may have caused:
    /// the activation of another window.
    bool wasDismissedByPress() const { return wasDismissedByPress_; }
    /// Hides the panel because the user asked for that, not by a press outside.
    void putAway();

 signals:
    void hidden();

 protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool event(QEvent* event) override;

 private:
    /// The panel's ground in the window's coordinates.
    QRect panelRect() const { return scroller_->geometry(); }
    void place();
    void placeInWorkArea();
    void cancel();
    void dismiss();
    /// Shows the panel's menu for the keyboard: over the focused button or in the middle.
    void openMenu();
    /// Scrolls as the key asks; false if it is not a scrolling key.
    bool scroll(int key);
    /// Directs keys and presses outside to the panel; if that fails, tries again soon.
    void takeInput(int attempt);

    const Theme& theme_;
    const PanelSurface surface_;
    bool isTranslucent_;
    QScrollArea* scroller_;
    PanelView* view_;
    std::function<bool()> cancel_;
    /// True while Escape changes the page.
    bool isCancelling_ = false;
    QRect anchor_;
    std::optional<ForeignActivation> foreignActivation_;
    DoubleClickGuard doubleClickGuard_{*this};
    /// True while the button is down after a press outside.
    bool isPressedOutside_ = false;
    bool wasDismissedByPress_ = false;
    bool isPutAway_ = false;
};

}  // namespace tarnwick::qt
