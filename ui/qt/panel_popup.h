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
#include "ui/qt/panel_view.h"
#include "ui/qt/theme.h"

namespace tarnwick::qt {

/// A borderless window around a page. Where windows can be translucent it has smooth corners and a
/// shadow, else it is cut to shape. A page that is higher than the screen scrolls: with the wheel,
/// with the keys that do so elsewhere, and to the button that gets the focus. Escape, a press
/// outside and another program's window becoming active hide it; the second press of a double click
/// inside does not, wherever the first one has left it.
class PanelPopup final : public QWidget {
    Q_OBJECT

 public:
    /// The page's bars move with `motion`; without one they jump.
    PanelPopup(const Theme& theme, const Page& page, PressHandler press, bool isTranslucent,
               std::shared_ptr<Motion> motion = nullptr);

    void setPage(const Page& page) { view_->setPage(page); }
    /// Shows another page in the same place, from its top on or from where the button of `entry`
    /// is. That button gets the focus, which is seen when a key led here.
    void turnTo(const Page& page, std::optional<PanelAction> entry);
    /// What Escape does before it hides the panel: with true it stays.
    void setCancelHandler(std::function<bool()> handler) { cancel_ = std::move(handler); }
    /// Shows the panel beside `anchor` (screen coordinates), where it stays also when its height
    /// changes.
    void popUp(const QRect& anchor);
    /// A press outside is what hid it, or what a press outside may have caused.
    bool wasDismissedByPress() const { return wasDismissedByPress_; }

 signals:
    void hidden();

 protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool event(QEvent* event) override;

 private:
    /// The panel's ground in the window's coordinates.
    QRect panelRect() const { return scroller_->geometry(); }
    void place();
    void cancel();
    void dismiss();
    /// Scrolls as the key asks for; false when it is none of those.
    bool scroll(int key);
    /// Sees to it that presses outside and keys come here, or tries again soon.
    void takeInput(int attempt);

    const Theme& theme_;
    bool isTranslucent_;
    QScrollArea* scroller_;
    PanelView* view_;
    std::function<bool()> cancel_;
    /// The page is being turned by Escape.
    bool isCancelling_ = false;
    QRect anchor_;
    std::optional<ForeignActivation> foreignActivation_;
    DoubleClickGuard doubleClickGuard_{*this};
    /// The button is down since a press outside.
    bool isPressedOutside_ = false;
    bool wasDismissedByPress_ = false;
};

}  // namespace tarnwick::qt
