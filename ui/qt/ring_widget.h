// SPDX-License-Identifier: MIT
// A ring around something that has the keyboard's focus.
#pragma once

#include <QWidget>

#include "ui/qt/theme.h"

namespace tarnwick::qt {

/// Hidden until it surrounds something. Lets clicks through.
class RingWidget : public QWidget {
 public:
    RingWidget(const Theme& theme, QWidget* parent);

 protected:
    /// Shows the ring above its siblings, around `place`, which has the parent's coordinates and
    /// corners of this radius.
    void surround(const QRect& place, int corner);
    void paintEvent(QPaintEvent* event) override;

 private:
    const Theme& theme_;
    int corner_ = 0;
};

}  // namespace tarnwick::qt
