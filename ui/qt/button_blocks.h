// The building blocks that hold buttons.
#pragma once

#include <utility>
#include <vector>

#include "ui/qt/block_widget.h"
#include "ui/qt/button_widget.h"

namespace tarnwick::qt {

/// Keeps the buttons where they belong.
template <class Value>
class ButtonBlockWidget : public ValueBlockWidget<Value> {
 public:
    ButtonBlockWidget(const Theme& theme, PressHandler press, QWidget* parent)
        : ValueBlockWidget<Value>(theme, parent), press_(std::move(press)) {}

 protected:
    /// Makes as many buttons as there are values, and shows them.
    void showButtons(const std::vector<PanelButton>& buttons, ButtonKind kind);
    /// In the order of the row.
    const std::vector<ButtonWidget*>& buttons() const { return buttons_; }
    virtual void placeButtons() = 0;
    void resizeEvent(QResizeEvent* event) final;
    void changeEvent(QEvent* event) final;

 private:
    PressHandler press_;
    std::vector<ButtonWidget*> buttons_;
};

/// The title and icon buttons of the home page, and the summary, which takes a second line where
/// one is too short.
class PanelHeaderWidget final : public ButtonBlockWidget<PanelHeader> {
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
    int titleRowHeight() const;
    /// The title, cut where the buttons leave no room for all of it.
    QString shownTitle() const;
    QStringList summaryLines(int width, int most) const;
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

/// The way back, the title in the middle of the row where there is room, and the refresh.
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
    /// The title, cut where the row has no room for all of it.
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
