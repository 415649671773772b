// SPDX-License-Identifier: MIT
#include "ui/qt/settings_buttons.h"

#include <QKeyEvent>
#include <QPainter>
#include <QtMath>

#include "settings/shortcut_field.h"
#include "ui/qt/click_by_return.h"
#include "ui/qt/settings_grid.h"
#include "ui/qt/settings_label.h"

namespace tarnwick::qt {

namespace {

/// A pressed switch is mixed with this colour.
constexpr QColor kShade(0, 0, 0, 28);

ColorRole groundOf(const QAbstractButton& button) {
    if (button.isDown()) {
        return ColorRole::controlPressed;
    }
    return button.underMouse() ? ColorRole::controlHovered : ColorRole::control;
}

}  // namespace

SettingsSwitchWidget::SettingsSwitchWidget(const Theme& theme, QWidget* parent)
    : QCheckBox(parent), theme_(theme) {
    setFixedSize(settings_grid::kSwitchWidth, settings_grid::kSwitchHeight);
    setFocusPolicy(Qt::TabFocus);
}

void SettingsSwitchWidget::keyPressEvent(QKeyEvent* event) {
    if (!clickByReturn(*this, *event)) {
        QCheckBox::keyPressEvent(event);
    }
}

void SettingsSwitchWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const qreal radius = height() / 2.0;
    const QColor off = theme_.isDark() ? QColor(0x48484C) : QColor(0xCFCFD4);
    painter.setBrush(isChecked() ? theme_.color(ColorRole::accent) : off);
    painter.drawRoundedRect(rect(), radius, radius);
    if (isDown()) {
        painter.setBrush(kShade);
        painter.drawRoundedRect(rect(), radius, radius);
    }
    const qreal size = height() - 2 * settings_grid::kKnobGap;
    const qreal x =
        isChecked() ? width() - settings_grid::kKnobGap - size : settings_grid::kKnobGap;
    painter.setBrush(QColor(0, 0, 0, 40));
    painter.drawEllipse(QRectF(x, settings_grid::kKnobGap + 0.75, size, size));
    painter.setBrush(Qt::white);
    painter.drawEllipse(QRectF(x, settings_grid::kKnobGap, size, size));
}

SettingsButton::SettingsButton(const Theme& theme, Kind kind, std::string_view title,
                               QWidget* parent)
    : QPushButton(parent), theme_(theme), kind_(kind) {
    // Not passed to the base's constructor, because assistive technology would then take this for a
    // plain button.
    setText(fromUtf8(title));
    setAccessibleName(text());
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
    setAutoDefault(false);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    if (kind == Kind::link) {
        setCursor(Qt::PointingHandCursor);
    }
}

QSize SettingsButton::sizeHint() const {
    const int padding = kind_ == Kind::link ? 0 : settings_grid::kButtonPaddingX;
    const int line = style().lineHeight();
    return {qCeil(style().width(text())) + 2 * padding,
            kind_ == Kind::link ? line : qMax(line + 6, ShortcutField::kHeight)};
}

int SettingsButton::focusCorner() const {
    return kind_ == Kind::link ? 2 : settings_grid::kButtonCorner;
}

void SettingsButton::keyPressEvent(QKeyEvent* event) {
    if (!clickByReturn(*this, *event)) {
        QPushButton::keyPressEvent(event);
    }
}

void SettingsButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor color = theme_.color(kind_ == Kind::link ? ColorRole::accent : ColorRole::text);
    if (kind_ == Kind::bordered) {
        painter.setPen(QPen(theme_.color(ColorRole::hairline), settings_grid::kCardOutline));
        painter.setBrush(theme_.color(groundOf(*this)));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5),
                                settings_grid::kButtonCorner - 0.5,
                                settings_grid::kButtonCorner - 0.5);
    } else if (isDown() || underMouse()) {
        color.setAlphaF(isDown() ? kPressedLink : kHoveredLink);
    }
    const int baseline = (height() - style().lineHeight()) / 2 + style().ascent();
    style().draw(painter, QPointF((width() - style().width(text())) / 2, baseline), text(), color);
}

}  // namespace tarnwick::qt
