// Draws a titled list of processes.
#pragma once

#include <vector>

#include "ui/qt/block_widget.h"
#include "ui/qt/row_content.h"

namespace tarnwick::qt {

class TopAppsWidget final : public ValueBlockWidget<TopAppsSection> {
 public:
    using ValueBlockWidget::ValueBlockWidget;

    int heightFor(int width) const override;

 protected:
    void paintEvent(QPaintEvent* event) override;
    QString cutTextAt(const QPoint& position) const override;

 private:
    /// The title, then the rows.
    std::vector<RowContent> lines() const;
    /// Calls `visit` with each line and its place, from top to bottom.
    template <class Visit>
    int forEachLine(Visit visit) const;
};

}  // namespace tarnwick::qt
