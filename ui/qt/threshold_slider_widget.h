// SPDX-License-Identifier: MIT
// The slider with two thumbs.
#pragma once

#include <QWidget>

#include "ui/qt/settings_focus_ring.h"
#include "ui/qt/theme.h"
#include "ui/settings/dual_threshold_slider.h"

namespace tarnwick::qt {

class ThresholdSliderWidget;

/// One thumb: takes the keyboard's focus, and is a slider of its own for assistive technology. As
/// large as the area that can be hit; the slider handles the pointer.
class ThresholdThumbWidget final : public QWidget, public FocusShape {
    Q_OBJECT

 public:
    ThresholdThumbWidget(DualThresholdSlider::Thumb thumb, ThresholdSliderWidget& owner);

    DualThresholdSlider::Thumb thumb() const { return thumb_; }
    const DualThresholdSlider& slider() const;
    void adjust(DualThresholdSlider::Adjustment adjustment);
    void setValue(double percent);
    QRect focusRect() const override;
    int focusCorner() const override;

 protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

 private:
    DualThresholdSlider::Thumb thumb_;
    ThresholdSliderWidget& owner_;
};

/// Draws a slider and passes its events on to it. `slider` must outlive the widget.
class ThresholdSliderWidget final : public QWidget {
    Q_OBJECT

 public:
    ThresholdSliderWidget(DualThresholdSlider& slider, const Theme& theme, QWidget* parent);

    /// Call it when the thresholds may have changed.
    void refresh();
    ThresholdThumbWidget& normal() const { return *normal_; }
    ThresholdThumbWidget& high() const { return *high_; }

 protected:
    bool event(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

 private:
    friend class ThresholdThumbWidget;

    void place(ThresholdThumbWidget& thumb);
    void endDrag();
    bool isDragging(DualThresholdSlider::Thumb thumb) const;

    DualThresholdSlider& slider_;
    const Theme& theme_;
    ThresholdThumbWidget* normal_;
    ThresholdThumbWidget* high_;
    // As they were drawn last, percent.
    double normalValue_;
    double highValue_;
};

}  // namespace tarnwick::qt
