// Draws a usage bar.
#pragma once

#include "ui/qt/block_widget.h"

namespace tarnwick::qt {

class UsageBarWidget final : public ValueBlockWidget<UsageBar> {
 public:
    using ValueBlockWidget::ValueBlockWidget;

    int heightFor(int width) const override;

 protected:
    void paintEvent(QPaintEvent* event) override;
    QString cutTextAt(const QPoint& position) const override;
};

}  // namespace tarnwick::qt
