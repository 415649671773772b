// SPDX-License-Identifier: MIT
// Marks the control of the settings window that has the keyboard's focus.
#pragma once

#include <QPointer>

#include "ui/qt/ring_widget.h"

namespace tarnwick::qt {

/// Implemented by every control that can have the keyboard's focus: tells where to draw the ring.
class FocusShape {
 public:
    virtual ~FocusShape() = default;

    /// In the control's own coordinates.
    virtual QRect focusRect() const = 0;
    /// Radius of its corners.
    virtual int focusCorner() const = 0;
};

/// A ring around the focused control among all descendants of its parent, drawn above them. Visible
/// only if a key gave the focus.
class SettingsFocusRing final : public RingWidget {
    Q_OBJECT

 public:
    SettingsFocusRing(const Theme& theme, QWidget* parent);

    /// Watches every FocusShape that is below the parent now.
    void watchControls();

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    void follow();

    QPointer<QWidget> control_;
};

}  // namespace tarnwick::qt
