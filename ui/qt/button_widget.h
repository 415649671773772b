// SPDX-License-Identifier: MIT
// Everything in the panel that can be pressed.
#pragma once

#include <QAbstractButton>
#include <memory>

#include "ui/panel/blocks.h"
#include "ui/panel/motion.h"
#include "ui/qt/block_widget.h"
#include "ui/qt/theme.h"

namespace tarnwick::qt {

/// How a button looks.
enum class ButtonKind {
    /// A symbol alone, with a background only under the pointer.
    icon,
    /// Its title on a background.
    title,
    /// As wide as the page, with the title at its leading end and a symbol at its trailing end.
    navigation,
    /// Its title in the accent colour, with its symbol, if any, before it; paler under the pointer.
    /// Without padding, so that it is aligned with the page's edges.
    link,
};

/// Pressed by the pointer, the space bar or Return. Its object name is "button." and the action's
/// name.
class ButtonWidget final : public QAbstractButton {
    Q_OBJECT

 public:
    /// Symbols turn with `motion`; without one they stand still.
    ButtonWidget(ButtonKind kind, const PanelButton& button, const Theme& theme,
                 std::shared_ptr<Motion> motion, PressHandler press, QWidget* parent);

    /// Paints again only when the button differs from the one shown.
    void setButton(const PanelButton& button);
    PanelAction action() const { return button_.action; }
    /// Turns the symbol of a button that shows it alone, once.
    void turnSymbol();
    /// The size that shows the whole title; of a navigation button the least width.
    QSize sizeHint() const override;
    /// Radius of its corners.
    int corner() const;
    /// True if the button has the focus and a key gave it, so that the focus must be visible.
    bool showsFocus() const { return hasFocus() && focusCameByKey_; }

 protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

 private:
    void applyButton();
    QColor ground() const;
    QColor foreground() const;
    const TextStyle& style() const { return theme_.style(FontRole::subheadline); }
    /// Where the title starts and the room for it, logical pixels.
    qreal titleX() const;
    int symbolSize() const;
    qreal titleRoom() const;

    ButtonKind kind_;
    const Theme& theme_;
    PressHandler press_;
    PanelButton button_;
    bool focusCameByKey_ = false;
    /// Whole turns of the symbol so far.
    MovingValue turns_;
};

}  // namespace tarnwick::qt
