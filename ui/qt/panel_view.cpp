#include "ui/qt/panel_view.h"

#include <QEvent>
#include <algorithm>
#include <utility>

#include "ui/panel/spoken_text.h"
#include "ui/qt/block_factory.h"
#include "ui/qt/button_widget.h"
#include "ui/qt/focus_ring.h"
#include "ui/qt/grid.h"

namespace tarnwick::qt {

PanelView::PanelView(const Theme& theme, PressHandler press, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      press_(std::move(press)),
      focusRing_(new FocusRing(theme, this)) {
    setLayoutDirection(Qt::LeftToRight);
}

/// The widget of that id, which the view then no longer has; null without one.
BlockWidget* PanelView::takeWidget(const std::string& id) {
    const auto row = std::find_if(rows_.begin(), rows_.end(),
                                  [&id](const Row& each) { return each.item.id == id; });
    return row == rows_.end() ? nullptr : std::exchange(row->widget, nullptr);
}

void PanelView::setPage(const Page& page) {
    std::vector<Row> rows;
    for (const PageItem& item : page) {
        BlockWidget* widget = takeWidget(item.id);
        if (widget != nullptr && !widget->setBlock(item.block)) {
            widget->deleteLater();
            widget->hide();
            widget = nullptr;
        }
        if (widget == nullptr) {
            widget = makeBlockWidget(item.block, theme_, press_, this);
            widget->setObjectName(QString::fromStdString(item.id));
            widget->show();
        }
        const QString spoken = QString::fromStdString(spokenText(item.block));
        if (widget->accessibleName() != spoken) {
            widget->setAccessibleName(spoken);
        }
        rows.push_back({item, widget});
    }
    for (const Row& gone : rows_) {
        if (gone.widget != nullptr) {
            gone.widget->hide();
            gone.widget->deleteLater();
        }
    }
    rows_ = std::move(rows);
    chainButtons();
    placeWidgets();
}

/// Lets the keyboard walk through the buttons in the order of the page.
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

void PanelView::placeWidgets() {
    constexpr int width = kPanelWidth - 2 * grid::kPadding;
    int y = grid::kPadding;
    for (const Row& row : rows_) {
        y += row.item.spaceAbove;
        const int height = row.widget->heightFor(width);
        const int overhang = row.widget->overhang();
        row.widget->setGeometry(grid::kPadding, y - overhang, width, height + 2 * overhang);
        y += height;
    }
    y += grid::kPadding;
    focusRing_->follow();
    if (size() != QSize(kPanelWidth, y)) {
        setFixedSize(kPanelWidth, y);
        emit heightChanged();
    }
}

void PanelView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::ApplicationFontChange) {
        placeWidgets();
    }
}

}  // namespace tarnwick::qt
