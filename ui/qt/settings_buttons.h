// SPDX-License-Identifier: MIT
// Switches and buttons of the settings window.
#pragma once

#include <QCheckBox>
#include <QPushButton>
#include <string_view>

#include "ui/qt/settings_focus_ring.h"
#include "ui/qt/theme.h"

namespace tarnwick::qt {

/// A switch. It shows the state that it is given. A press by the pointer, a key or assistive
/// technology only emits clicked().
class SettingsSwitchWidget final : public QCheckBox, public FocusShape {
    Q_OBJECT

 public:
    SettingsSwitchWidget(const Theme& theme, QWidget* parent);

    QRect focusRect() const override { return rect(); }
    int focusCorner() const override { return height() / 2; }

 protected:
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void nextCheckState() override {}
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

 private:
    const Theme& theme_;
};

/// Bordered: a title on a background. Link: a title without one.
class SettingsButton final : public QPushButton, public FocusShape {
    Q_OBJECT

 public:
    enum class Kind { bordered, link };

    SettingsButton(const Theme& theme, Kind kind, std::string_view title, QWidget* parent);

    Kind kind() const { return kind_; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }
    QRect focusRect() const override { return rect(); }
    int focusCorner() const override;

 protected:
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

 private:
    const TextStyle& style() const { return theme_.style(FontRole::subheadline); }

    const Theme& theme_;
    Kind kind_;
};

}  // namespace tarnwick::qt
