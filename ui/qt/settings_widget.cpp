// SPDX-License-Identifier: MIT
#include "ui/qt/settings_widget.h"

#include <QShortcut>
#include <QStackedLayout>
#include <QVBoxLayout>
#include <utility>

#include "ui/qt/settings_accessibility.h"
#include "ui/qt/settings_label.h"

namespace tarnwick::qt {

SettingsWidget::SettingsWidget(UserSettings& settings, const Theme& theme,
                               SettingsViewEnvironment environment, KeyCodes keyCodes)
    : view_(settings, std::move(environment)),
      theme_(theme),
      keyCodes_(std::move(keyCodes)),
      pages_(new QStackedLayout) {
    // Before the first of these widgets is made: the toolkit keeps the first interface of a widget.
    installSettingsAccessibility();
    tabs_ = new SettingsTabBar(
        theme, [this](Tab tab) { view_.selectTab(tab); }, this);
    setLayoutDirection(Qt::LeftToRight);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(tabs_);
    column->addLayout(pages_, 1);
    const auto step = [this](QKeySequence::StandardKey key, int direction) {
        auto* shortcut = new QShortcut(key, this);
        connect(shortcut, &QShortcut::activated, this,
                [this, direction] { tabs_->selectNeighbour(direction); });
    };
    step(QKeySequence::NextChild, 1);
    step(QKeySequence::PreviousChild, -1);
    for (const QKeySequence& keys :
         {QKeySequence(Qt::CTRL | Qt::Key_W), QKeySequence(Qt::Key_Escape)}) {
        auto* shortcut = new QShortcut(keys, this);
        connect(shortcut, &QShortcut::activated, this, [this] { window()->close(); });
    }
    view_.setObserver([this](const SettingsView::Content& content) { apply(content); });
    apply(view_.content());
}

SettingsWidget::~SettingsWidget() {
    view_.setObserver(nullptr);
    // The pages use the view until they are destroyed.
    for (SettingsPageWidget* page : made_) {
        delete page;
    }
}

SettingsPageWidget& SettingsWidget::page(Tab tab) {
    SettingsPageWidget*& made = made_[static_cast<std::size_t>(tab)];
    if (made == nullptr) {
        made = new SettingsPageWidget(view_, tab, theme_, keyCodes_, this);
        made->setAccessibleName(fromUtf8(kTabs[static_cast<std::size_t>(tab)].label));
        pages_->addWidget(made);
    }
    return *made;
}

void SettingsWidget::apply(const SettingsView::Content& content) {
    SettingsPageWidget& shown = page(content.tab);
    shown.setPage(content.page);
    pages_->setCurrentWidget(&shown);
    tabs_->setSelected(content.tab);
}

void SettingsWidget::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!std::exchange(wasShown_, true)) {
        tabs_->focusFirst();
    }
}

}  // namespace tarnwick::qt
