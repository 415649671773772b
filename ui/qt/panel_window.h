// SPDX-License-Identifier: MIT
// Opens and closes the panel.
#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>
#include <functional>
#include <memory>

#include "platform/dispatch.h"
#include "ui/panel/menu_bar_view.h"
#include "ui/panel/motion.h"
#include "ui/qt/panel_surface.h"
#include "ui/qt/theme.h"

namespace tarnwick::qt {

class PanelPopup;

/// Builds the widgets when the panel opens and frees them when it closes. Between the two the view
/// knows that it is visible. Main thread.
class PanelWindow final : public QObject {
    Q_OBJECT

 public:
    /// Tells what kind of window the panel is; asked each time it opens.
    using SurfaceOf = std::function<PanelSurface()>;

    /// All of them must outlive the window.
    PanelWindow(
        MenuBarView& view, const Theme& theme, platform::Dispatch& dispatch,
        SurfaceOf surfaceOf = [] { return panelSurface(); });
    ~PanelWindow() override;

    bool isOpen() const;
    /// `isReduced`: the desktop asks for less motion, so bars jump.
    void setMotionReduced(bool isReduced) { motion_->setReduced(isReduced); }
    /// Opens beside `anchor`, the status item's rectangle on the screen; one pixel if only a point
    /// is known. Does nothing while open.
    void open(const QRect& anchor);
    void close();
    /// Opens the panel, or closes it.
    void toggle(const QRect& anchor);
    /// What a click on the status item does: toggles the panel. If the same click has just
    /// dismissed the panel, because the item lies outside it, the panel stays closed.
    void click(const QRect& anchor);

    /// A click within this many seconds after a dismissal is taken for the click that caused it.
    static constexpr double kSameClickInterval = 0.3;

 signals:
    /// The panel has closed and its widgets are gone.
    void widgetsFreed();

 private:
    void pageChanged(const Page& page);
    void popupHidden();

    MenuBarView& view_;
    const Theme& theme_;
    platform::Dispatch& dispatch_;
    SurfaceOf surfaceOf_;
    std::shared_ptr<Motion> motion_;
    QPointer<PanelPopup> popup_;
    /// The page that the pop-up shows.
    MenuTab shownTab_ = MenuTab::home;
    /// When a press outside last closed the panel, in seconds of the dispatch's clock; negative if
    /// something else closed it.
    double dismissedAt_ = -1;
};

}  // namespace tarnwick::qt
