// SPDX-License-Identifier: MIT
// The tabs of the settings window, along its top.
#pragma once

#include <QAbstractButton>
#include <QWidget>
#include <functional>
#include <vector>

#include "ui/qt/settings_focus_ring.h"
#include "ui/qt/theme.h"
#include "ui/settings/tab.h"

namespace tarnwick::qt {

/// A symbol with its label below.
class SettingsTabButton final : public QAbstractButton, public FocusShape {
    Q_OBJECT

 public:
    SettingsTabButton(const Theme& theme, const TabItem& item, QWidget* parent);

    Tab tab() const { return item_.tab; }
    QSize sizeHint() const override;
    QRect focusRect() const override { return rect(); }
    int focusCorner() const override;

 protected:
    void nextCheckState() override {}
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

 private:
    const TextStyle& style() const { return theme_.style(FontRole::subheadline); }

    const Theme& theme_;
    TabItem item_;
};

/// Selecting a tab calls `select`, and does not show the selection by itself. The arrow keys select
/// the neighbouring tabs.
class SettingsTabBar final : public QWidget {
    Q_OBJECT

 public:
    SettingsTabBar(const Theme& theme, std::function<void(Tab)> select, QWidget* parent);

    void setSelected(Tab tab);
    /// Gives the keyboard to the first tab.
    void focusFirst();
    /// Selects the tab `step` places further, wrapping around at the ends, and gives it the focus.
    void selectNeighbour(int step);

 protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

 private:
    void choose(Tab tab);

    const Theme& theme_;
    std::function<void(Tab)> select_;
    std::vector<SettingsTabButton*> buttons_;
    /// The tab that was chosen last; the bar shows it a little later.
    Tab selected_ = Tab::general;
};

}  // namespace tarnwick::qt
