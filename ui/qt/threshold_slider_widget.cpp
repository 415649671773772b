// SPDX-License-Identifier: MIT
#include "ui/qt/threshold_slider_widget.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "ui/qt/settings_grid.h"

namespace tarnwick::qt {

namespace {

using Thumb = DualThresholdSlider::Thumb;
using MoveCommand = DualThresholdSlider::MoveCommand;

constexpr int kHit = static_cast<int>(DualThresholdSlider::kHitSize);
constexpr int kThumb = static_cast<int>(DualThresholdSlider::kThumbSize);

std::optional<MoveCommand> moveCommand(int key) {
    switch (key) {
        case Qt::Key_Up:
            return MoveCommand::up;
        case Qt::Key_Down:
            return MoveCommand::down;
        case Qt::Key_Left:
            return MoveCommand::left;
        case Qt::Key_Right:
            return MoveCommand::right;
        default:
            return std::nullopt;
    }
}

QColor gray(double level) {
    return QColor::fromRgbF(static_cast<float>(level), static_cast<float>(level),
                            static_cast<float>(level));
}

/// Whether the values differ. Two values that are not a number count as equal.
bool isOther(double one, double other) {
    return one != other && !(std::isnan(one) && std::isnan(other));
}

void tellValue(QWidget* thumb, double value) {
    QAccessibleValueChangeEvent event(thumb, value);
    QAccessible::updateAccessibility(&event);
    // The description contains the value, too.
    QAccessibleEvent described(thumb, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&described);
}

}  // namespace

ThresholdThumbWidget::ThresholdThumbWidget(Thumb thumb, ThresholdSliderWidget& owner)
    : QWidget(&owner), thumb_(thumb), owner_(owner) {
    setFixedSize(kHit, kHit);
    setFocusPolicy(slider().keyboardNavigationEnabled() ? Qt::TabFocus : Qt::NoFocus);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setObjectName(thumb == Thumb::normal ? "thumb.normal" : "thumb.high");
}

const DualThresholdSlider& ThresholdThumbWidget::slider() const {
    return owner_.slider_;
}

void ThresholdThumbWidget::adjust(DualThresholdSlider::Adjustment adjustment) {
    owner_.slider_.adjust(thumb_, adjustment);
    owner_.refresh();
}

void ThresholdThumbWidget::setValue(double percent) {
    owner_.slider_.setValue(thumb_, percent);
    owner_.refresh();
}

QRect ThresholdThumbWidget::focusRect() const {
    constexpr int margin = (kHit - kThumb) / 2;
    return rect().adjusted(margin, margin, -margin, -margin);
}

int ThresholdThumbWidget::focusCorner() const {
    return kThumb / 2;
}

void ThresholdThumbWidget::keyPressEvent(QKeyEvent* event) {
    const auto command = moveCommand(event->key());
    if (!command) {
        QWidget::keyPressEvent(event);
        return;
    }
    owner_.slider_.move(thumb_, *command);
    owner_.refresh();
}

void ThresholdThumbWidget::paintEvent(QPaintEvent*) {
    const Theme& theme = owner_.theme_;
    const QPointF center = QRectF(rect()).center();
    const auto circle = [&center](QPainter& painter, qreal size) {
        painter.drawEllipse(center, size / 2, size / 2);
    };
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    // A soft shadow, up to the edge of the widget.
    painter.setBrush(QColor(0, 0, 0, theme.isDark() ? 60 : 14));
    circle(painter, kThumb + 4);
    painter.setBrush(QColor(0, 0, 0, theme.isDark() ? 80 : 24));
    circle(painter, kThumb + 2);
    painter.setBrush(gray(theme.isDark() ? DualThresholdSlider::kDarkThumbLevel
                                         : DualThresholdSlider::kLightThumbLevel));
    circle(painter, kThumb);
    if (theme.isDark()) {
        // As dark as the card below it: a light hairline shows where it is.
        painter.setPen(QPen(QColor(255, 255, 255, 110), 1));
        painter.setBrush(Qt::NoBrush);
        circle(painter, kThumb - 1);
        painter.setPen(Qt::NoPen);
    }
    painter.setBrush(theme.color(thumb_ == Thumb::normal ? Tint::yellow : Tint::red));
    circle(painter,
           owner_.isDragging(thumb_) ? settings_grid::kDraggedThumbDot : settings_grid::kThumbDot);
}

ThresholdSliderWidget::ThresholdSliderWidget(DualThresholdSlider& slider, const Theme& theme,
                                             QWidget* parent)
    : QWidget(parent),
      slider_(slider),
      theme_(theme),
      normal_(new ThresholdThumbWidget(Thumb::normal, *this)),
      high_(new ThresholdThumbWidget(Thumb::high, *this)),
      normalValue_(slider.value(Thumb::normal)),
      highValue_(slider.value(Thumb::high)) {
    setFixedHeight(kHit);
    // Needed to notice a pointer that moves without a button: the drag has ended.
    setMouseTracking(true);
    setLayoutDirection(Qt::LeftToRight);
}

void ThresholdSliderWidget::refresh() {
    const double normal = slider_.value(Thumb::normal);
    const double high = slider_.value(Thumb::high);
    const bool isOtherNormal = isOther(std::exchange(normalValue_, normal), normal);
    const bool isOtherHigh = isOther(std::exchange(highValue_, high), high);
    if (isOtherNormal) {
        place(*normal_);
        tellValue(normal_, normal);
    }
    if (isOtherHigh) {
        place(*high_);
        tellValue(high_, high);
    }
    if (isOtherNormal || isOtherHigh) {
        update();
    }
}

void ThresholdSliderWidget::place(ThresholdThumbWidget& thumb) {
    const double center = slider_.thumbCenter(thumb.thumb(), width());
    thumb.move(static_cast<int>(std::lround(center)) - kHit / 2, (height() - kHit) / 2);
}

bool ThresholdSliderWidget::isDragging(Thumb thumb) const {
    return thumb == Thumb::normal ? slider_.isDraggingNormal() : slider_.isDraggingHigh();
}

void ThresholdSliderWidget::endDrag() {
    for (ThresholdThumbWidget* thumb : {normal_, high_}) {
        if (isDragging(thumb->thumb())) {
            thumb->update();
        }
    }
    slider_.endDrag();
}

bool ThresholdSliderWidget::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate) {
        endDrag();
    }
    return QWidget::event(event);
}

void ThresholdSliderWidget::hideEvent(QHideEvent* event) {
    endDrag();
    QWidget::hideEvent(event);
}

void ThresholdSliderWidget::mousePressEvent(QMouseEvent* event) {
    const double fromAxis = event->position().y() - height() / 2.0;
    if (event->button() != Qt::LeftButton ||
        !slider_.beginDrag(event->position().x(), fromAxis, width())) {
        event->ignore();
        return;
    }
    mouseMoveEvent(event);
}

void ThresholdSliderWidget::mouseMoveEvent(QMouseEvent* event) {
    if (event->type() == QEvent::MouseMove) {
        if (!event->buttons().testFlag(Qt::LeftButton)) {
            // The release went to another receiver.
            endDrag();
            return;
        }
        slider_.continueDrag(event->position().x(), width());
    }
    for (ThresholdThumbWidget* thumb : {normal_, high_}) {
        if (isDragging(thumb->thumb())) {
            thumb->raise();
            thumb->update();
            if (thumb->focusPolicy() != Qt::NoFocus && !thumb->hasFocus()) {
                thumb->setFocus(Qt::MouseFocusReason);
            }
        }
    }
    refresh();
}

void ThresholdSliderWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        endDrag();
    }
}

void ThresholdSliderWidget::paintEvent(QPaintEvent*) {
    constexpr double inset = DualThresholdSlider::kThumbSize / 2;
    constexpr double thickness = DualThresholdSlider::kTrackHeight;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRectF track(inset, (height() - thickness) / 2, DualThresholdSlider::usableWidth(width()),
                       thickness);
    QPainterPath capsule;
    capsule.addRoundedRect(track, thickness / 2, thickness / 2);
    QColor ground = theme_.color(ColorRole::secondaryText);
    ground.setAlphaF(static_cast<float>(DualThresholdSlider::kTrackOpacity));
    painter.fillPath(capsule, ground);
    const DualThresholdSlider::Segments segments = slider_.segments(width());
    double x = track.left();
    for (const auto& [tint, length] : {std::pair{Tint::green, segments.green},
                                       {Tint::yellow, segments.yellow},
                                       {Tint::red, segments.red}}) {
        const double end = std::min(x + length, track.right());
        if (end > x) {
            // Only the ends of the track are round.
            painter.save();
            painter.setClipRect(QRectF(x, 0, end - x, height()));
            painter.fillPath(capsule, theme_.color(tint));
            painter.restore();
        }
        x = end;
    }
    for (const double tick : slider_.ticks(width())) {
        painter.fillRect(
            QRectF(std::round(tick) - 0.5, track.bottom() + DualThresholdSlider::kTickGap, 1,
                   DualThresholdSlider::kTickHeight),
            theme_.color(ColorRole::secondaryText));
    }
}

void ThresholdSliderWidget::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    place(*normal_);
    place(*high_);
}

}  // namespace tarnwick::qt
