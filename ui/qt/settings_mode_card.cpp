// SPDX-License-Identifier: MIT
#include "ui/qt/settings_mode_card.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>

#include "ui/qt/click_by_return.h"
#include "ui/qt/settings_buttons.h"
#include "ui/qt/settings_card_widget.h"
#include "ui/qt/settings_grid.h"
#include "ui/qt/symbols.h"
#include "ui/qt/tool_tip.h"

namespace tarnwick::qt {

DisplayModePreviewWidget::DisplayModePreviewWidget(const Theme& theme,
                                                   const DisplayModePreview& preview,
                                                   QWidget* parent)
    : QWidget(parent), theme_(theme), preview_(preview) {
    setFixedHeight(DisplayModePreview::kHeight);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void DisplayModePreviewWidget::paintEvent(QPaintEvent*) {
    using namespace settings_grid;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme_.color(ColorRole::control));
    painter.drawRoundedRect(rect(), kStripCorner, kStripCorner);
    const TextStyle& style = theme_.style(FontRole::subheadlineMedium);
    const int symbol = theme_.scaled(kPreviewSymbol);
    const QString text = fromUtf8(preview_.text());
    const qreal textWidth = text.isEmpty() ? 0 : kPreviewGap + style.width(text);
    const int x = static_cast<int>((width() - symbol - textWidth) / 2);
    paintSymbol(painter, preview_.icon(), theme_.color(preview_.tint()),
                QPointF(x, (height() - symbol) / 2), symbol);
    if (!text.isEmpty()) {
        style.draw(
            painter,
            QPointF(x + symbol + kPreviewGap, (height() - style.lineHeight()) / 2 + style.ascent()),
            text, theme_.color(ColorRole::text));
    }
}

DisplayModeCardWidget::DisplayModeCardWidget(const Theme& theme, const DisplayModeCard& card,
                                             QWidget* parent)
    : QRadioButton(parent),
      theme_(theme),
      radio_(new SymbolWidget(theme, settings_grid::kRadioSymbol, this)) {
    // The view decides which card is selected, not the group of cards.
    setAutoExclusive(false);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    setAccessibleName(fromUtf8(card.title()));
    setObjectName("mode." + fromUtf8(rawValue(card.mode)));

    constexpr int padding = settings_grid::kCardPadding;
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(padding, padding, padding, padding);
    column->setSpacing(settings_grid::kPartGap);
    auto* head = new QHBoxLayout;
    head->setSpacing(settings_grid::kSymbolGap);
    head->addWidget(radio_);
    head->addWidget(
        new SettingsLabel(theme, FontRole::headline, ColorRole::text, this, card.title()), 1);
    column->addLayout(head);
    auto* description = new SettingsLabel(theme, FontRole::caption, ColorRole::secondaryText, this,
                                          card.description());
    description->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    column->addWidget(description, 1);
    column->addWidget(new DisplayModePreviewWidget(theme, card.preview(), this));
    setCard(card);
}

void DisplayModeCardWidget::setCard(const DisplayModeCard& card) {
    setChecked(card.isSelected());
    radio_->setSymbol(card.radioIcon(),
                      card.isSelected() ? ColorRole::accent : ColorRole::secondaryText);
    toolTip_ = fromUtf8(card.toolTip);
    QStringList described{fromUtf8(card.description()), toolTip_};
    described.removeAll(QString());
    if (const QString text = described.join(' '); text != accessibleDescription()) {
        setAccessibleDescription(text);
    }
}

bool DisplayModeCardWidget::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || toolTip_.isEmpty()) {
        return QRadioButton::event(event);
    }
    showToolTip(*this, rect(), toolTip_, theme_);
    return true;
}

int DisplayModeCardWidget::focusCorner() const {
    return settings_grid::kCardCorner;
}

void DisplayModeCardWidget::keyPressEvent(QKeyEvent* event) {
    if (!clickByReturn(*this, *event)) {
        QRadioButton::keyPressEvent(event);
    }
}

void DisplayModeCardWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintCard(painter, rect(), theme_, isChecked(), underMouse() && !isChecked());
}

}  // namespace tarnwick::qt
