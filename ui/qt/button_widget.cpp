// SPDX-License-Identifier: MIT
#include "ui/qt/button_widget.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QtMath>
#include <cmath>
#include <utility>

#include "ui/panel/blocks.h"
#include "ui/qt/click_by_return.h"
#include "ui/qt/grid.h"
#include "ui/qt/symbols.h"
#include "ui/qt/tool_tip.h"

namespace tarnwick::qt {

namespace {

/// A disabled button is drawn this opaque.
constexpr qreal kDisabledOpacity = 0.45;

const char* nameOf(PanelAction action) {
    switch (action) {
        case PanelAction::refresh:
            return "button.refresh";
        case PanelAction::showSettings:
            return "button.showSettings";
        case PanelAction::openActivityMonitor:
            return "button.openActivityMonitor";
        case PanelAction::quit:
            return "button.quit";
        case PanelAction::showMemoryDetail:
            return "button.showMemoryDetail";
        case PanelAction::showPerformanceDetail:
            return "button.showPerformanceDetail";
        case PanelAction::goBack:
            return "button.goBack";
        case PanelAction::copy:
            return "button.copy";
    }
    return "";
}

}  // namespace

ButtonWidget::ButtonWidget(ButtonKind kind, const PanelButton& button, const Theme& theme,
                           std::shared_ptr<Motion> motion, PressHandler press, QWidget* parent)
    : QAbstractButton(parent),
      kind_(kind),
      theme_(theme),
      press_(std::move(press)),
      button_(button),
      turns_(
          std::move(motion), [this] { update(); }, Motion::kTurn) {
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
    connect(this, &QAbstractButton::clicked, this, [this] { press_(button_.action); });
    applyButton();
}

void ButtonWidget::setButton(const PanelButton& button) {
    if (button_ != button) {
        button_ = button;
        applyButton();
        update();
    }
}

void ButtonWidget::turnSymbol() {
    if (kind_ == ButtonKind::icon) {
        turns_.moveTo(turns_.target() + 1);
    }
}

void ButtonWidget::applyButton() {
    setObjectName(nameOf(button_.action));
    setAccessibleName(QString::fromStdString(button_.title));
    setEnabled(button_.isEnabled);
}

QSize ButtonWidget::sizeHint() const {
    const int line = style().lineHeight();
    const int width =
        qCeil(style().width(QString::fromStdString(button_.title))) + 2 * grid::kButtonPaddingX;
    switch (kind_) {
        case ButtonKind::icon:
            return {theme_.scaled(grid::kIconButtonSize), theme_.scaled(grid::kIconButtonSize)};
        case ButtonKind::title:
            return {width, line + 2 * grid::kButtonPaddingY};
        case ButtonKind::link:
            return {qCeil(titleX() + style().width(QString::fromStdString(button_.title))),
                    line + 2 * grid::kButtonPaddingY};
        case ButtonKind::navigation:
            break;
    }
    return {width + symbolSize() + grid::kSymbolGap, line + 2 * grid::kNavigationPaddingY};
}

int ButtonWidget::corner() const {
    return kind_ == ButtonKind::navigation ? grid::kNavigationCorner : grid::kButtonCorner;
}

QColor ButtonWidget::ground() const {
    if (kind_ == ButtonKind::link) {
        return Qt::transparent;
    }
    if (isDown()) {
        return theme_.color(ColorRole::controlPressed);
    }
    if (isEnabled() && underMouse()) {
        return theme_.color(ColorRole::controlHovered);
    }
    return kind_ == ButtonKind::icon ? QColor(Qt::transparent) : theme_.color(ColorRole::control);
}

QColor ButtonWidget::foreground() const {
    if (kind_ == ButtonKind::link) {
        QColor color = theme_.color(ColorRole::accent);
        color.setAlphaF(isDown() ? kPressedLink : isEnabled() && underMouse() ? kHoveredLink : 1);
        return color;
    }
    const bool isQuiet = kind_ == ButtonKind::icon && !(isEnabled() && underMouse());
    return theme_.color(isQuiet ? ColorRole::secondaryText : ColorRole::text);
}

int ButtonWidget::symbolSize() const {
    return theme_.scaled(grid::kSymbolSize);
}

qreal ButtonWidget::titleX() const {
    if (kind_ != ButtonKind::link) {
        return grid::kButtonPaddingX;
    }
    return button_.icon.empty()
               ? 0
               : symbolSize() - theme_.scaled(grid::kLinkSymbolEdge) + grid::kLinkGap;
}

qreal ButtonWidget::titleRoom() const {
    switch (kind_) {
        case ButtonKind::navigation:
            return width() - 2 * grid::kButtonPaddingX - symbolSize() - grid::kSymbolGap;
        case ButtonKind::link:
            return width() - titleX();
        case ButtonKind::icon:
        case ButtonKind::title:
            break;
    }
    return width() - 2 * grid::kButtonPaddingX;
}

void ButtonWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground());
    painter.drawRoundedRect(rect(), corner(), corner());
    painter.setOpacity(isEnabled() ? 1 : kDisabledOpacity);
    const int symbolY = (height() - symbolSize()) / 2;
    if (kind_ == ButtonKind::icon) {
        paintSymbol(painter, button_.icon, foreground(),
                    QPointF((width() - symbolSize()) / 2, symbolY), symbolSize(),
                    std::fmod(turns_.value(), 1));
        return;
    }
    const int baseline = (height() - style().lineHeight()) / 2 + style().ascent();
    style().draw(painter, QPointF(titleX(), baseline),
                 style().elided(QString::fromStdString(button_.title), titleRoom()), foreground());
    if (kind_ == ButtonKind::link && !button_.icon.empty()) {
        paintSymbol(painter, button_.icon, foreground(),
                    QPointF(-theme_.scaled(grid::kLinkSymbolEdge), symbolY), symbolSize());
    }
    if (kind_ == ButtonKind::navigation) {
        paintSymbol(painter, NavigationButton::kTrailingIcon,
                    theme_.color(ColorRole::secondaryText),
                    QPointF(width() - grid::kButtonPaddingX - symbolSize(), symbolY), symbolSize());
    }
}

bool ButtonWidget::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) {
        return QAbstractButton::event(event);
    }
    const QString title = QString::fromStdString(button_.title);
    if (kind_ == ButtonKind::icon || style().width(title) > titleRoom()) {
        showToolTip(*this, rect(), title, theme_);
    }
    return true;
}

void ButtonWidget::keyPressEvent(QKeyEvent* event) {
    if (clickByReturn(*this, *event)) {
        return;
    }
    if (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down) {
        // Left to the page: it walks through the buttons or scrolls, depending on the room for the
        // page.
        event->ignore();
        return;
    }
    QAbstractButton::keyPressEvent(event);
}

// The focus goes where the pointer presses, unseen: whoever presses by the pointer does not look
// for the place of the keyboard. Cleared first, because the button may already have it by key.
void ButtonWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        clearFocus();
        setFocus(Qt::MouseFocusReason);
    }
    QAbstractButton::mousePressEvent(event);
}

void ButtonWidget::focusInEvent(QFocusEvent* event) {
    focusCameByKey_ = event->reason() == Qt::TabFocusReason ||
                      event->reason() == Qt::BacktabFocusReason ||
                      event->reason() == Qt::ShortcutFocusReason;
    QAbstractButton::focusInEvent(event);
}

}  // namespace tarnwick::qt
