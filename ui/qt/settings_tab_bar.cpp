// SPDX-License-Identifier: MIT
#include "ui/qt/settings_tab_bar.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QtMath>
#include <algorithm>
#include <utility>

#include "ui/qt/click_by_return.h"
#include "ui/qt/grid.h"
#include "ui/qt/settings_buttons.h"
#include "ui/qt/settings_grid.h"
#include "ui/qt/settings_label.h"
#include "ui/qt/symbols.h"

namespace tarnwick::qt {

SettingsTabButton::SettingsTabButton(const Theme& theme, const TabItem& item, QWidget* parent)
    : QAbstractButton(parent), theme_(theme), item_(item) {
    setText(fromUtf8(item.label));
    setAccessibleName(text());
    setObjectName("tab." + text());
    setCheckable(true);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize SettingsTabButton::sizeHint() const {
    using namespace settings_grid;
    const int symbol = theme_.scaled(kTabSymbol);
    return {std::max(qCeil(style().width(text())), symbol) + 2 * kTabPaddingX,
            symbol + kTabGap + style().lineHeight() + 2 * kTabPaddingY};
}

int SettingsTabButton::focusCorner() const {
    return settings_grid::kTabCorner;
}

void SettingsTabButton::keyPressEvent(QKeyEvent* event) {
    if (clickByReturn(*this, *event)) {
        return;
    }
    switch (event->key()) {
        case Qt::Key_Left:
        case Qt::Key_Right:
            // The bar handles these keys.
            event->ignore();
            return;
        default:
            QAbstractButton::keyPressEvent(event);
    }
}

void SettingsTabButton::paintEvent(QPaintEvent*) {
    using namespace settings_grid;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (isDown()) {
        painter.setBrush(theme_.color(ColorRole::controlPressed));
    } else if (isChecked() || underMouse()) {
        painter.setBrush(theme_.color(ColorRole::control));
    } else {
        painter.setBrush(Qt::NoBrush);
    }
    painter.drawRoundedRect(rect(), kTabCorner, kTabCorner);
    const int symbol = theme_.scaled(kTabSymbol);
    const QColor color = theme_.color(isChecked() ? ColorRole::accent : ColorRole::secondaryText);
    paintSymbol(painter, item_.icon, color, QPointF((width() - symbol) / 2, kTabPaddingY), symbol);
    style().draw(painter,
                 QPointF((width() - style().width(text())) / 2,
                         kTabPaddingY + symbol + kTabGap + style().ascent()),
                 text(), color);
}

SettingsTabBar::SettingsTabBar(const Theme& theme, std::function<void(Tab)> select, QWidget* parent)
    : QWidget(parent), theme_(theme), select_(std::move(select)) {
    auto* row = new QHBoxLayout(this);
    constexpr int margin = settings_grid::kTabBarMargin;
    row->setContentsMargins(margin, margin, margin, margin);
    row->setSpacing(settings_grid::kTabSpacing);
    row->addStretch();
    for (const TabItem& item : kTabs) {
        auto* button = new SettingsTabButton(theme, item, this);
        connect(button, &QAbstractButton::clicked, this, [this, tab = item.tab] { choose(tab); });
        row->addWidget(button);
        buttons_.push_back(button);
    }
    row->addStretch();
    auto* ring = new SettingsFocusRing(theme, this);
    ring->watchControls();
}

void SettingsTabBar::choose(Tab tab) {
    selected_ = tab;
    select_(tab);
}

void SettingsTabBar::setSelected(Tab tab) {
    selected_ = tab;
    for (SettingsTabButton* button : buttons_) {
        if (button->isChecked() != (button->tab() == tab)) {
            button->setChecked(button->tab() == tab);
            QAccessible::State changed;
            changed.selected = true;
            QAccessibleStateChangeEvent event(button, changed);
            QAccessible::updateAccessibility(&event);
        }
    }
}

void SettingsTabBar::focusFirst() {
    buttons_.front()->setFocus(Qt::OtherFocusReason);
}

void SettingsTabBar::selectNeighbour(int step) {
    const auto count = static_cast<int>(buttons_.size());
    const auto current = std::find_if(
        buttons_.begin(), buttons_.end(),
        [this](const SettingsTabButton* button) { return button->tab() == selected_; });
    const auto next = static_cast<int>(current - buttons_.begin()) + step;
    SettingsTabButton* button = buttons_[static_cast<std::size_t>((next + count) % count)];
    button->setFocus(step > 0 ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    choose(button->tab());
}

void SettingsTabBar::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Left:
            return selectNeighbour(-1);
        case Qt::Key_Right:
            return selectNeighbour(1);
        default:
            QWidget::keyPressEvent(event);
    }
}

void SettingsTabBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(0, height() - grid::kHairline, width(), grid::kHairline,
                     theme_.color(ColorRole::hairline));
}

}  // namespace tarnwick::qt
