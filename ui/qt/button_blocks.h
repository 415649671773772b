// The building blocks that hold buttons.
#pragma once

#include <vector>

#include "ui/qt/block_widget.h"
#include "ui/qt/button_widget.h"

namespace tarnwick::qt {

/// The title and icon buttons of the home page, and the summary, which takes a second line where
/// one is too short.
class PanelHeaderWidget final : public ValueBlockWidget<PanelHeader> {
 public:
    PanelHeaderWidget(const Theme& theme, PressHandler press, QWidget* parent);

    int heightFor(int width) const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::Heading; }

 protected:
    void valueChanged() override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    QString cutTextAt(const QPoint& position) const override;

 private:
    void placeButtons();
    int titleRowHeight() const;
    QStringList summaryLines(int width) const;

    PressHandler press_;
    std::vector<ButtonWidget*> buttons_;
};

class NavigationButtonWidget final : public ValueBlockWidget<NavigationButton> {
 public:
    NavigationButtonWidget(const Theme& theme, PressHandler press, QWidget* parent);

    int heightFor(int width) const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }

 protected:
    void valueChanged() override;
    void resizeEvent(QResizeEvent* event) override;

 private:
    PressHandler press_;
    /// One.
    std::vector<ButtonWidget*> buttons_;
};

/// The way back, the title in the middle of the row where there is room, and the refresh.
class DetailHeaderWidget final : public ValueBlockWidget<DetailHeader> {
 public:
    DetailHeaderWidget(const Theme& theme, PressHandler press, QWidget* parent);

    int heightFor(int width) const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::Heading; }

 protected:
    void valueChanged() override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    QString cutTextAt(const QPoint& position) const override;

 private:
    void placeButtons();
    /// The title, cut where the row has no room for all of it.
    QString shownTitle() const;

    PressHandler press_;
    /// Two.
    std::vector<ButtonWidget*> buttons_;
};

class FooterRowWidget final : public ValueBlockWidget<FooterRow> {
 public:
    FooterRowWidget(const Theme& theme, PressHandler press, QWidget* parent);

    int heightFor(int width) const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }

 protected:
    void valueChanged() override;
    void resizeEvent(QResizeEvent* event) override;

 private:
    void placeButtons();

    PressHandler press_;
    std::vector<ButtonWidget*> buttons_;
};

}  // namespace tarnwick::qt
