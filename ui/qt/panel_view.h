// SPDX-License-Identifier: MIT
// The column of building blocks of a page.
#pragma once

#include <QMenu>
#include <QPointer>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/dispatch.h"
#include "ui/panel/motion.h"
#include "ui/panel/page.h"
#include "ui/qt/block_widget.h"
#include "ui/qt/theme.h"

namespace tarnwick::qt {

class ButtonWidget;
class FocusRing;

/// kPanelWidth wide, wider beside large texts, and as high as its page. A new page changes only the
/// widgets of the items that differ. A widget is kept as long as an item of its id and kind exists.
/// The object name of a widget is the id of its item.
class PanelView final : public QWidget {
    Q_OBJECT

 public:
    /// Bars move and the symbol of a refresh turns with `motion`; without one they do not, and a
    /// list is held as long as the pointer is over it.
    PanelView(const Theme& theme, PressHandler press, QWidget* parent,
              std::shared_ptr<Motion> motion = nullptr);

    /// Shows new figures of the page that is shown, or the first page.
    void setPage(const Page& page);
    /// Replaces the page by another one. The button of `entry`, if there is one, gets the
    /// keyboard's focus with that reason.
    void turnTo(const Page& page, std::optional<PanelAction> entry, Qt::FocusReason reason);
    /// The button that has the focus; null without one.
    ButtonWidget* focusedButton() const;
    /// The up and down keys walk through the buttons. Does nothing and returns false for another
    /// key, and if the page is cut off: then these keys scroll.
    bool walk(int key);
    /// Shows the panel's menu at that point of the screen, unless it is shown already.
    void openMenu(const QPoint& place);

 signals:
    /// A page of another height was set, or the fonts changed.
    void sizeChanged();

 protected:
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;

 private:
    struct Row {
        PageItem item;
        BlockWidget* widget;
    };
    using Rows = std::vector<Row>;

    /// Makes the rows of the page from the existing ones, and shows the new ones in their places.
    /// Returns the widgets that are left over; they still exist.
    std::vector<BlockWidget*> takePage(const Page& page);
    BlockWidget* takeWidget(const std::string& id);
    /// Shows that the action is under way, for one that takes time.
    void turnSymbols(PanelAction action);
    static void remove(const std::vector<BlockWidget*>& widgets);
    void chainButtons();
    void orderWidgets();
    /// The row that the pointer holds in place; the end if there is none.
    Rows::iterator heldRow();
    /// Places the rows one below the other, and keeps `held` where it is.
    void placeWidgets(Rows::iterator held);
    void lookForPointer();
    /// Measures the time for which a row is held now.
    void timeHold();
    void endHold();

    const Theme& theme_;
    PressHandler press_;
    std::shared_ptr<Motion> motion_;
    Rows rows_;
    /// Not null while a row is held: fires at the end of the longest hold.
    std::unique_ptr<platform::Timer> holdEnd_;
    FocusRing* focusRing_;
    /// While it is shown.
    QPointer<QMenu> menu_;
};

}  // namespace tarnwick::qt
