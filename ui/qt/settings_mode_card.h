// SPDX-License-Identifier: MIT
// The card of a display mode.
#pragma once

#include <QRadioButton>
#include <optional>

#include "ui/qt/settings_focus_ring.h"
#include "ui/qt/settings_label.h"
#include "ui/qt/theme.h"
#include "ui/settings/display_mode_card.h"

namespace tarnwick::qt {

/// The strip that shows how the status item will look.
class DisplayModePreviewWidget final : public QWidget {
    Q_OBJECT

 public:
    DisplayModePreviewWidget(const Theme& theme, const DisplayModePreview& preview,
                             QWidget* parent);

 protected:
    void paintEvent(QPaintEvent* event) override;

 private:
    const Theme& theme_;
    DisplayModePreview preview_;
};

/// The whole card is a button. It shows the state that it is given; a press only emits clicked().
class DisplayModeCardWidget final : public QRadioButton, public FocusShape {
    Q_OBJECT

 public:
    DisplayModeCardWidget(const Theme& theme, const DisplayModeCard& card, QWidget* parent);

    void setCard(const DisplayModeCard& card);
    QSize sizeHint() const override { return QWidget::sizeHint(); }
    QSize minimumSizeHint() const override { return QWidget::minimumSizeHint(); }
    QRect focusRect() const override { return rect(); }
    int focusCorner() const override;

 protected:
    bool event(QEvent* event) override;
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void nextCheckState() override {}
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

 private:
    const Theme& theme_;
    SymbolWidget* radio_;
    QString toolTip_;
};

}  // namespace tarnwick::qt
