// SPDX-License-Identifier: MIT
// Draws a trend: title over value at the left, the sparkline at the right.
#pragma once

#include "ui/qt/block_widget.h"

class QPainter;

namespace tarnwick::qt {

class TrendRowWidget final : public ValueBlockWidget<TrendRow> {
 public:
    using ValueBlockWidget::ValueBlockWidget;

    int heightFor(int width) const override;
    /// The line reaches beyond its frame by half its width where it follows an edge, and by the tip
    /// of a peak.
    int overhang() const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::Chart; }
    /// The latest value of the line.
    std::optional<double> accessibleValue() const override;

 protected:
    void valueChanged() override { announceValue(); }
    void paintEvent(QPaintEvent* event) override;
    QString cutTextAt(const QPoint& position) const override;
    QString toolTipAt(const QPoint& position) const override;

 private:
    QSize sparklineSize() const;
    int textHeight() const;
    qreal textRoom() const;
};

/// Draws the line, or the placeholder bar, into `frame`.
void paintSparkline(QPainter& painter, const SparklineView& sparkline, const Theme& theme,
                    const QRectF& frame);

}  // namespace tarnwick::qt
