// Draws a hairline across the page.
#pragma once

#include <QPainter>
#include <QTransform>
#include <algorithm>
#include <cmath>

#include "ui/qt/block_widget.h"
#include "ui/qt/device_pixels.h"
#include "ui/qt/grid.h"

namespace tarnwick::qt {

class DividerWidget final : public ValueBlockWidget<PanelDivider> {
 public:
    using ValueBlockWidget::ValueBlockWidget;

    int heightFor(int) const override { return grid::kHairline; }
    QAccessible::Role accessibleRole() const override { return QAccessible::Separator; }

 protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        // Whole pixels, so that every divider is equally thin.
        const qreal scale = painter.deviceTransform().m22();
        const qreal thickness = std::max(1.0, std::floor(scale * grid::kHairline)) / scale;
        painter.fillRect(onPixelRows(painter, QRectF(0, height() - thickness, width(), thickness)),
                         theme().color(ColorRole::hairline));
    }
};

}  // namespace tarnwick::qt
