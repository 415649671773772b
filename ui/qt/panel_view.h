// The column of building blocks of a page.
#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "ui/panel/page.h"
#include "ui/qt/block_widget.h"
#include "ui/qt/theme.h"

namespace tarnwick::qt {

class FocusRing;

/// kPanelWidth wide and as high as its page. A page that follows another touches only the widgets
/// of the items that differ; a widget stays as long as an item of its id and kind does. The widget
/// of an item has the item's id as its object name.
class PanelView final : public QWidget {
    Q_OBJECT

 public:
    PanelView(const Theme& theme, PressHandler press, QWidget* parent);

    void setPage(const Page& page);

 signals:
    /// A page of another height was set, or the fonts changed.
    void heightChanged();

 protected:
    void changeEvent(QEvent* event) override;

 private:
    struct Row {
        PageItem item;
        BlockWidget* widget;
    };

    BlockWidget* takeWidget(const std::string& id);
    void chainButtons();
    void placeWidgets();

    const Theme& theme_;
    PressHandler press_;
    std::vector<Row> rows_;
    FocusRing* focusRing_;
};

}  // namespace tarnwick::qt
