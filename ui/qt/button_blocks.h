// SPDX-License-Identifier: MIT
// The building blocks that hold buttons.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "ui/qt/block_widget.h"
#include "ui/qt/button_widget.h"
#include "ui/qt/grid.h"

namespace tarnwick::qt {

/// Creates the buttons of a block and places them when its size or font changes.
template <class Value>
class ButtonBlockWidget : public ValueBlockWidget<Value> {
 public:
    ButtonBlockWidget(const Theme& theme, std::shared_ptr<Motion> motion, PressHandler press,
                      QWidget* parent)
        : ValueBlockWidget<Value>(theme, parent),
          motion_(std::move(motion)),
          press_(std::move(press)) {}

 protected:
    /// Makes as many buttons as there are values, and shows them.
    void showButtons(const std::vector<PanelButton>& buttons, ButtonKind kind);
    /// In the order of the row.
    const std::vector<ButtonWidget*>& buttons() const { return buttons_; }
    virtual void placeButtons() = 0;
    void resizeEvent(QResizeEvent* event) final;
    void changeEvent(QEvent* event) final;

 private:
    std::shared_ptr<Motion> motion_;
    PressHandler press_;
    std::vector<ButtonWidget*> buttons_;
};

/// The title and the icon buttons of the home page, and the summary. The room for the longest
/// summary is always there, so that the panel keeps its height when another sentence comes.
class PanelHeaderWidget final : public ButtonBlockWidget<PanelHeader> {
 public:
    using ButtonBlockWidget::ButtonBlockWidget;

    int heightFor(int width) const override;
    /// The symbol of the last button, not its background, ends where the column ends.
    int sideOverhang() const override {
        return (theme().scaled(grid::kIconButtonSize) - theme().scaled(grid::kSymbolSize)) / 2;
    }
    QAccessible::Role accessibleRole() const override { return QAccessible::Heading; }

 protected:
    void valueChanged() override;
    bool paintsItself() const override { return false; }
    void paintEvent(QPaintEvent* event) override;
    void placeButtons() override;
    QString cutTextAt(const QPoint& position) const override;

 private:
    int columnWidth() const { return width() - 2 * sideOverhang(); }
    int titleRowHeight() const;
    /// The title, cut if the buttons leave too little room.
    QString shownTitle() const;
    const TextStyle& summaryStyle() const;
    QStringList shownSummary() const;
};

class NavigationButtonWidget final : public ButtonBlockWidget<NavigationButton> {
 public:
    using ButtonBlockWidget::ButtonBlockWidget;

    int heightFor(int width) const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }

 protected:
    void valueChanged() override;
    void placeButtons() override;
};

/// The button that leads back, the title (in the middle of the row if there is room), and the
/// refresh button.
class DetailHeaderWidget final : public ButtonBlockWidget<DetailHeader> {
 public:
    using ButtonBlockWidget::ButtonBlockWidget;

    int heightFor(int width) const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::Heading; }

 protected:
    void valueChanged() override;
    void paintEvent(QPaintEvent* event) override;
    void placeButtons() override;
    QString cutTextAt(const QPoint& position) const override;

 private:
    /// The title, cut if the row has too little room.
    QString shownTitle() const;
};

class FooterRowWidget final : public ButtonBlockWidget<FooterRow> {
 public:
    using ButtonBlockWidget::ButtonBlockWidget;

    int heightFor(int width) const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }

 protected:
    void valueChanged() override;
    void placeButtons() override;
};

}  // namespace tarnwick::qt
