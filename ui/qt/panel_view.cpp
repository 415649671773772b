// SPDX-License-Identifier: MIT
#include "ui/qt/panel_view.h"

#include <QContextMenuEvent>
#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <algorithm>
#include <mutex>
#include <utility>

#include "ui/panel/held_order.h"
#include "ui/panel/spoken_text.h"
#include "ui/qt/accessible_block.h"
#include "ui/qt/block_factory.h"
#include "ui/qt/button_widget.h"
#include "ui/qt/focus_ring.h"
#include "ui/qt/grid.h"
#include "ui/qt/panel_menu.h"

namespace tarnwick::qt {

PanelView::PanelView(const Theme& theme, PressHandler press, QWidget* parent,
                     std::shared_ptr<Motion> motion)
    : QWidget(parent),
      theme_(theme),
      press_([this, press = std::move(press)](PanelAction action) {
          turnSymbols(action);
          press(action);
      }),
      motion_(std::move(motion)),
      focusRing_(new FocusRing(theme, this)) {
    setLayoutDirection(Qt::LeftToRight);
    static std::once_flag isDescribed;
    std::call_once(isDescribed, describeBlocksForScreenReaders);
}

void PanelView::turnSymbols(PanelAction action) {
    if (action != PanelAction::refresh) {
        return;
    }
    for (ButtonWidget* button : findChildren<ButtonWidget*>()) {
        if (button->action() == action) {
            button->turnSymbol();
        }
    }
}

/// Moves the widget of that id out of its row; null without one.
BlockWidget* PanelView::takeWidget(const std::string& id) {
    const auto row = std::find_if(rows_.begin(), rows_.end(),
                                  [&id](const Row& each) { return each.item.id == id; });
    return row == rows_.end() ? nullptr : std::exchange(row->widget, nullptr);
}

std::vector<BlockWidget*> PanelView::takePage(const Page& page) {
    Rows rows;
    std::vector<BlockWidget*> gone;
    bool isOrdered = true;
    for (const PageItem& item : page) {
        BlockWidget* widget = takeWidget(item.id);
        if (widget != nullptr && !widget->setBlock(item.block)) {
            gone.push_back(std::exchange(widget, nullptr));
        }
        if (widget == nullptr) {
            widget = makeBlockWidget(item.block, theme_, motion_, press_, this);
            widget->setObjectName(QString::fromStdString(item.id));
            connect(widget, &BlockWidget::accessibleValueChanged, widget,
                    [widget](double percent) { announceValue(*widget, percent); });
            // Queued, because the signal may come while a page is being taken.
            connect(
                widget, &BlockWidget::placeChanged, this, [this] { placeWidgets(heldRow()); },
                Qt::QueuedConnection);
            isOrdered = false;
        }
        const QString spoken = QString::fromStdString(spokenText(item.block));
        if (widget->accessibleName() != spoken) {
            widget->setAccessibleName(spoken);
            announceDescription(*widget);
        }
        widget->setToolTipText(item.toolTip);
        rows.push_back({item, widget});
    }
    for (const Row& left : rows_) {
        if (left.widget != nullptr) {
            gone.push_back(left.widget);
        }
    }
    rows_ = std::move(rows);
    chainButtons();
    if (!isOrdered) {
        orderWidgets();
    }
    placeWidgets(heldRow());
    return gone;
}

void PanelView::remove(const std::vector<BlockWidget*>& widgets) {
    for (BlockWidget* widget : widgets) {
        widget->hide();
        widget->deleteLater();
    }
}

void PanelView::setPage(const Page& page) {
    remove(takePage(page));
}

void PanelView::turnTo(const Page& page, std::optional<PanelAction> entry, Qt::FocusReason reason) {
    const std::vector<BlockWidget*> gone = takePage(page);
    // Before the focused button is removed, because that would give the focus to another button.
    for (const Row& row : rows_) {
        for (ButtonWidget* button : row.widget->findChildren<ButtonWidget*>()) {
            if (entry == button->action()) {
                button->setFocus(reason);
            }
        }
    }
    remove(gone);
}

ButtonWidget* PanelView::focusedButton() const {
    return qobject_cast<ButtonWidget*>(focusWidget());
}

/// Sets the tab order of the buttons to the order of the page.
void PanelView::chainButtons() {
    ButtonWidget* previous = nullptr;
    for (const Row& row : rows_) {
        for (ButtonWidget* button : row.widget->findChildren<ButtonWidget*>()) {
            if (previous != nullptr) {
                setTabOrder(previous, button);
            }
            previous = button;
        }
    }
}

/// Stacks the widgets in the order of the page: screen readers read from the lowest to the highest.
void PanelView::orderWidgets() {
    for (const Row& row : rows_) {
        row.widget->raise();
    }
    focusRing_->raise();
}

PanelView::Rows::iterator PanelView::heldRow() {
    return std::find_if(rows_.begin(), rows_.end(),
                        [](const Row& row) { return row.widget->isHeld(); });
}

// Rows above the held one must not take more room than before: a new row there stays hidden for
// now, and a row that has grown is cut. Room that is no longer needed stays empty.
void PanelView::placeWidgets(Rows::iterator held) {
    const int panelWidth = theme_.scaled(kPanelWidth);
    const int width = panelWidth - 2 * grid::kPadding;
    int y = grid::kPadding;
    for (auto row = rows_.begin(); row != rows_.end(); ++row) {
        BlockWidget& widget = *row->widget;
        const bool isAboveHeld = held != rows_.end() && row < held;
        if (isAboveHeld && widget.isHidden()) {
            continue;
        }
        const int overhang = widget.overhang();
        int height = widget.heightFor(width);
        y += row->item.spaceAbove;
        if (isAboveHeld) {
            height = std::min(height, widget.height() - 2 * overhang);
        } else if (row == held) {
            y = std::max(y, widget.y() + overhang);
        }
        // Placed before it is shown: otherwise the widget would first appear in the corner and
        // could take a pointer there for one above itself.
        const int side = widget.sideOverhang();
        widget.setGeometry(grid::kPadding - side, y - overhang, width + 2 * side,
                           height + 2 * overhang);
        widget.show();
        y += height;
    }
    y += grid::kPadding;
    focusRing_->follow();
    if (size() != QSize(panelWidth, y)) {
        setFixedSize(panelWidth, y);
        emit sizeChanged();
    }
    lookForPointer();
    timeHold();
}

void PanelView::timeHold() {
    if (heldRow() == rows_.end()) {
        holdEnd_.reset();
    } else if (holdEnd_ == nullptr && motion_ != nullptr) {
        holdEnd_ = motion_->dispatch().scheduleRepeating(kLongestHold, [this] { endHold(); });
    }
}

// Places the rows at once: a pointer that moves on would hold them again before a later turn.
void PanelView::endHold() {
    for (const Row& row : rows_) {
        row.widget->letGo();
    }
    placeWidgets(rows_.end());
}

void PanelView::lookForPointer() {
    for (const Row& row : rows_) {
        row.widget->lookForPointer();
    }
}

bool PanelView::walk(int key) {
    const bool isCutOff = parentWidget() != nullptr && parentWidget()->height() < height();
    if ((key != Qt::Key_Up && key != Qt::Key_Down) || isCutOff) {
        return false;
    }
    focusNextPrevChild(key == Qt::Key_Down);
    return true;
}

void PanelView::keyPressEvent(QKeyEvent* event) {
    if (!walk(event->key())) {
        QWidget::keyPressEvent(event);
    }
}

void PanelView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::ApplicationFontChange) {
        placeWidgets(rows_.end());
    }
}

void PanelView::contextMenuEvent(QContextMenuEvent* event) {
    openMenu(event->globalPos());
}

// Some versions of the toolkit tell of a right click in a pop-up as of a menu that is wanted,
// others only of the press, and others of both.
void PanelView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::RightButton) {
        openMenu(event->globalPosition().toPoint());
    } else {
        QWidget::mousePressEvent(event);
    }
}

void PanelView::openMenu(const QPoint& place) {
    if (!menu_) {
        menu_ = makePanelMenu(*this, theme_, press_);
        menu_->popup(place);
    }
}

// The view moves when the page is scrolled.
void PanelView::moveEvent(QMoveEvent* event) {
    QWidget::moveEvent(event);
    lookForPointer();
}

}  // namespace tarnwick::qt
