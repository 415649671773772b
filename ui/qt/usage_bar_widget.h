// SPDX-License-Identifier: MIT
// Draws a usage bar.
#pragma once

#include <memory>

#include "ui/panel/motion.h"
#include "ui/qt/block_widget.h"

namespace tarnwick::qt {

/// The bar moves to a new value; its texts are new at once.
class UsageBarWidget final : public ValueBlockWidget<UsageBar> {
 public:
    /// With a null `motion` the bar jumps.
    UsageBarWidget(const Theme& theme, std::shared_ptr<Motion> motion, QWidget* parent);

    int heightFor(int width) const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::StaticText; }
    std::optional<double> accessibleValue() const override {
        // A gray bar means that the value is not known yet.
        return value().tint == Tint::gray ? std::nullopt : std::optional(value().fraction() * 100);
    }

 protected:
    void valueChanged() override;
    void paintEvent(QPaintEvent* event) override;
    QString cutTextAt(const QPoint& position) const override;

 private:
    QRect barRect() const;
    /// The area in which the bar may paint.
    QRect barRoom() const;
    void barMoved();

    /// The share of the bar that is filled now.
    MovingValue fraction_;
    /// True once the bar has shown a value.
    bool isBegun_ = false;
    /// The share that the screen shows, apart from pending repaints.
    double drawnFraction_ = 0;
};

}  // namespace tarnwick::qt
