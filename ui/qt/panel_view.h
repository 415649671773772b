// The column of building blocks of a page.
#pragma once

#include <QPoint>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ui/panel/motion.h"
#include "ui/panel/page.h"
#include "ui/qt/block_widget.h"
#include "ui/qt/theme.h"

namespace tarnwick::qt {

class ButtonWidget;
class FocusRing;

/// kPanelWidth wide and as high as its page. A page that follows another touches only the widgets
/// of the items that differ; a widget stays as long as an item of its id and kind does. The widget
/// of an item has the item's id as its object name.
class PanelView final : public QWidget {
    Q_OBJECT

 public:
    /// Bars move with `motion`; without one they jump.
    PanelView(const Theme& theme, PressHandler press, QWidget* parent,
              std::shared_ptr<Motion> motion = nullptr);

    /// Figures of the page that is shown, or the first page.
    void setPage(const Page& page);
    /// Another page in place of the one shown. The button of `entry`, if there is one, gets the
    /// keyboard's focus for that reason.
    void turnTo(const Page& page, std::optional<PanelAction> entry, Qt::FocusReason reason);
    /// The button that has the focus; null without one.
    ButtonWidget* focusedButton() const;
    /// Up and down walk through the buttons. False, doing nothing, for another key, and for a page
    /// that is cut off: there they scroll.
    bool walk(int key);

 signals:
    /// A page of another height was set, or the fonts changed.
    void heightChanged();

 protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void moveEvent(QMoveEvent* event) override;

 private:
    struct Row {
        PageItem item;
        BlockWidget* widget;
    };
    using Rows = std::vector<Row>;

    /// Makes the rows of the page out of those there are, and shows the new ones in their places.
    /// The widgets that are left over, which it returns, are still there.
    std::vector<BlockWidget*> takePage(const Page& page);
    BlockWidget* takeWidget(const std::string& id);
    static void remove(const std::vector<BlockWidget*>& widgets);
    void chainButtons();
    void orderWidgets();
    /// The row that somebody is pointing at and that must not move; the end without one.
    Rows::iterator heldRow();
    /// Shows the rows one below the other, with `held` where it is.
    void placeWidgets(Rows::iterator held);
    void lookForPointer();

    const Theme& theme_;
    PressHandler press_;
    std::shared_ptr<Motion> motion_;
    Rows rows_;
    /// Where the pointer was when the last page was set, and how many pages it has been there.
    QPoint pointer_;
    int pagesAtRest_ = 0;
    FocusRing* focusRing_;
};

}  // namespace tarnwick::qt
