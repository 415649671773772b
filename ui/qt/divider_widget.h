// Draws a hairline across the page.
#pragma once

#include <QPainter>

#include "ui/qt/block_widget.h"
#include "ui/qt/grid.h"

namespace tarnwick::qt {

class DividerWidget final : public ValueBlockWidget<PanelDivider> {
 public:
    using ValueBlockWidget::ValueBlockWidget;

    int heightFor(int) const override { return grid::kHairline; }
    QAccessible::Role accessibleRole() const override { return QAccessible::Separator; }

 protected:
    void paintEvent(QPaintEvent*) override {
        QPainter(this).fillRect(rect(), theme().color(ColorRole::hairline));
    }
};

}  // namespace tarnwick::qt
