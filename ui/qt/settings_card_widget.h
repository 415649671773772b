// SPDX-License-Identifier: MIT
// The rounded card that groups related controls.
#pragma once

#include <QWidget>

#include "ui/qt/theme.h"

class QPainter;
class QVBoxLayout;

namespace tarnwick::qt {

/// Paints a card that fills `rect`; a selected one has an outline in the accent colour.
void paintCard(QPainter& painter, const QRectF& rect, const Theme& theme, bool isSelected,
               bool isHovered);

/// Widgets that are added to its column stand on the card.
class SettingsCardWidget : public QWidget {
    Q_OBJECT

 public:
    SettingsCardWidget(const Theme& theme, QWidget* parent);

    QVBoxLayout* column() const { return column_; }
    /// For the pointer over the card; empty for none.
    void setToolTipText(const QString& text) { toolTip_ = text; }

 protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    const Theme& theme() const { return theme_; }

 private:
    const Theme& theme_;
    QVBoxLayout* column_;
    QString toolTip_;
};

}  // namespace tarnwick::qt
