// Opens and closes the panel.
#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>
#include <memory>

#include "platform/dispatch.h"
#include "ui/panel/menu_bar_view.h"
#include "ui/panel/motion.h"
#include "ui/qt/theme.h"

namespace tarnwick::qt {

class PanelPopup;

/// The widgets are built when the panel opens and freed when it closes; in between the view knows
/// that it is visible. Main thread.
class PanelWindow final : public QObject {
    Q_OBJECT

 public:
    /// All outlive the window.
    PanelWindow(MenuBarView& view, const Theme& theme, platform::Dispatch& dispatch);
    ~PanelWindow() override;

    bool isOpen() const;
    /// The desktop asks for less motion: bars jump.
    void setMotionReduced(bool isReduced) { motion_->setReduced(isReduced); }
    /// Opens beside `anchor`, the status item's place on the screen; a rectangle of one pixel where
    /// only a point is known. Does nothing while open.
    void open(const QRect& anchor);
    void close();
    /// Opens the panel, or closes it.
    void toggle(const QRect& anchor);
    /// What a click on the status item does: toggles the panel. Where that same click has just
    /// dismissed the panel because it lay outside, the panel stays closed.
    void click(const QRect& anchor);

    /// Seconds within which a click and the dismissal that it caused belong together.
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
    std::shared_ptr<Motion> motion_;
    QPointer<PanelPopup> popup_;
    /// The page that the pop-up shows.
    MenuTab shownTab_ = MenuTab::home;
    /// When a press outside closed the panel last, in seconds of the dispatch's clock; negative
    /// when something else did.
    double dismissedAt_ = -1;
};

}  // namespace tarnwick::qt
