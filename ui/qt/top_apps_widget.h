// Draws a list of processes, with or without a title.
#pragma once

#include <vector>

#include "ui/qt/block_widget.h"
#include "ui/qt/row_content.h"

namespace tarnwick::qt {

/// The lines of a list, from top to bottom.
template <class List>
class ProcessListWidget : public ValueBlockWidget<List> {
 public:
    using ValueBlockWidget<List>::ValueBlockWidget;

    int heightFor(int width) const override;

 protected:
    void paintEvent(QPaintEvent* event) override;
    QString cutTextAt(const QPoint& position) const override;

 private:
    /// The title, where the list has one, then the rows.
    std::vector<RowContent> lines() const;
    /// Calls `visit` with each line and its place, from top to bottom; the height of all.
    template <class Visit>
    int forEachLine(int width, Visit visit) const;
};

using TopAppsWidget = ProcessListWidget<TopAppsSection>;
using TopAppsListWidget = ProcessListWidget<TopAppsList>;

}  // namespace tarnwick::qt
