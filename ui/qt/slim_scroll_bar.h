// SPDX-License-Identifier: MIT
// A vertical scroll bar that is only a handle, and nothing while there is nothing to scroll.
#pragma once

#include <QScrollBar>

#include "ui/qt/theme.h"

namespace tarnwick::qt {

class SlimScrollBar final : public QScrollBar {
    Q_OBJECT

 public:
    SlimScrollBar(const Theme& theme, QWidget* parent);

    QSize sizeHint() const override;

 protected:
    void paintEvent(QPaintEvent* event) override;

 private:
    const Theme& theme_;
};

}  // namespace tarnwick::qt
