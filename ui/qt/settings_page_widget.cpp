// SPDX-License-Identifier: MIT
#include "ui/qt/settings_page_widget.h"

#include <QApplication>
#include <QVBoxLayout>
#include <utility>

#include "ui/qt/settings_cards.h"
#include "ui/qt/settings_grid.h"
#include "ui/qt/settings_mode_card.h"
#include "ui/qt/slim_scroll_bar.h"

namespace tarnwick::qt {

namespace {

/// A function that passes the value of one kind of item to its widget.
template <class Value, class Widget>
std::function<void(const SettingsItem&)> setter(Widget* widget, void (Widget::*set)(const Value&)) {
    return [widget, set](const SettingsItem& item) { (widget->*set)(std::get<Value>(item)); };
}

/// The same for the content of a plain card.
template <class Value, class Widget>
std::function<void(const SettingsItem&)> cardSetter(Widget* widget,
                                                    void (Widget::*set)(const Value&)) {
    return [widget, set](const SettingsItem& item) {
        (widget->*set)(std::get<Value>(std::get<SettingsCard>(item).content));
    };
}

}  // namespace

SettingsPageWidget::SettingsPageWidget(SettingsView& view, Tab tab, const Theme& theme,
                                       KeyCodes keyCodes, QWidget* parent)
    : QScrollArea(parent), view_(view), theme_(theme), keyCodes_(std::move(keyCodes)) {
    setFrameShape(NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setVerticalScrollBar(new SlimScrollBar(theme, this));
    auto* content = new QWidget;
    content->setObjectName("page");
    column_ = new QVBoxLayout(content);
    constexpr int margin = settings_grid::kMargin;
    column_->setContentsMargins(margin, settings_grid::kTopMargin,
                                margin - settings_grid::kScrollBar, margin);
    const SettingsPage page = view.page(tab);
    column_->setSpacing(page.sectionSpacing);
    setWidget(content);
    content->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    for (const SettingsSection& section : page.sections) {
        addSection(section);
    }
    column_->addStretch();
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget* before, QWidget* focused) {
        // When the window becomes active again, the focus returns to where it was: no reason to
        // scroll.
        const bool isBack = before == nullptr && focused != nullptr && focused == lastFocused_;
        if (!isBack) {
            scrollTo(focused);
        }
        if (focused != nullptr) {
            lastFocused_ = focused;
        }
    });
    auto* ring = new SettingsFocusRing(theme, content);
    ring->watchControls();
    setPage(page);
}

// The base destroys the controls later, when only a plain widget is left of this object. A control
// that then loses its focus must not call back.
SettingsPageWidget::~SettingsPageWidget() {
    disconnect(qApp, nullptr, this, nullptr);
}

/// Needed because the toolkit only scrolls to a control that a key gave the focus.
void SettingsPageWidget::scrollTo(QWidget* focused) {
    if (focused == nullptr || !widget()->isAncestorOf(focused)) {
        return;
    }
    if (qobject_cast<ShortcutFieldWidget*>(focused) != nullptr) {
        // The whole card, because the lines about the shortcut stand below the field.
        ensureWidgetVisible(focused->parentWidget(), 0, settings_grid::kMargin);
    } else if (QApplication::mouseButtons() == Qt::NoButton) {
        ensureWidgetVisible(focused);
    }
}

void SettingsPageWidget::addSection(const SettingsSection& section) {
    QWidget* parent = widget();
    auto* items = new QVBoxLayout;
    items->setSpacing(SettingsPage::kItemSpacing);
    auto* titled = new QVBoxLayout;
    titled->setSpacing(settings_grid::kHeadingGap);
    if (!section.title.empty()) {
        titled->addWidget(new SettingsLabel(theme_, FontRole::subheadlineMedium,
                                            ColorRole::secondaryText, parent, section.title));
    }
    titled->addLayout(items);
    QHBoxLayout* modes = nullptr;
    for (const SettingsItem& item : section.content) {
        QWidget* made = makeItem(item, parent);
        if (std::holds_alternative<DisplayModeCard>(item)) {
            if (modes == nullptr) {
                modes = new QHBoxLayout;
                modes->setSpacing(SettingsPage::kItemSpacing);
                items->addLayout(modes);
            }
            modes->addWidget(made, 1);
        } else if (std::holds_alternative<ResetButton>(item)) {
            items->addWidget(made, 0, Qt::AlignLeft);
        } else {
            items->addWidget(made);
        }
    }
    column_->addLayout(titled);
}

QWidget* SettingsPageWidget::makeItem(const SettingsItem& item, QWidget* parent) {
    if (const auto* card = std::get_if<DisplayModeCard>(&item)) {
        auto* made = new DisplayModeCardWidget(theme_, *card, parent);
        connect(made, &QAbstractButton::clicked, this,
                [this, mode = card->mode] { view_.selectDisplayMode(mode); });
        setters_.push_back(setter(made, &DisplayModeCardWidget::setCard));
        return made;
    }
    if (const auto* card = std::get_if<ThresholdEditorCard>(&item)) {
        auto* made = new ThresholdCardWidget(theme_, *card, view_.slider(card->metric), parent);
        made->setObjectName(fromUtf8(card->title));
        setters_.push_back(setter(made, &ThresholdCardWidget::setCard));
        return made;
    }
    if (const auto* card = std::get_if<SettingsCard>(&item)) {
        return makeCard(*card, parent);
    }
    auto* reset =
        new SettingsButton(theme_, SettingsButton::Kind::bordered, ResetButton::kTitle, parent);
    reset->setObjectName("reset");
    connect(reset, &QAbstractButton::clicked, this, [this] { view_.resetThresholds(); });
    setters_.emplace_back();
    return reset;
}

QWidget* SettingsPageWidget::makeCard(const SettingsCard& card, QWidget* parent) {
    if (const auto* row = std::get_if<SwitchRow>(&card.content)) {
        auto* made = new SwitchCardWidget(
            theme_, *row, [this, setting = row->setting] { view_.toggleSwitch(setting); }, parent);
        setters_.push_back(cardSetter(made, &SwitchCardWidget::setRow));
        return made;
    }
    if (std::holds_alternative<ShortcutEditor>(card.content)) {
        auto* made = new ShortcutCardWidget(
            theme_, view_.shortcutField(), keyCodes_, [this] { view_.clearShortcut(); }, parent);
        // Queued, because the page does not have its new height yet.
        connect(
            made, &ShortcutCardWidget::heightChanged, this,
            [this] {
                auto* field = qobject_cast<ShortcutFieldWidget*>(QApplication::focusWidget());
                scrollTo(field);
            },
            Qt::QueuedConnection);
        setters_.push_back(cardSetter(made, &ShortcutCardWidget::setEditor));
        return made;
    }
    if (std::holds_alternative<ItemNotice>(card.content)) {
        auto* made = new NoticeCardWidget(theme_, parent);
        setters_.push_back(cardSetter(made, &NoticeCardWidget::setNotice));
        return made;
    }
    setters_.emplace_back();
    if (const auto* name = std::get_if<ProgramName>(&card.content)) {
        return new ProgramCardWidget(theme_, *name, parent);
    }
    if (std::holds_alternative<FeatureList>(card.content)) {
        return new FeatureCardWidget(theme_, parent);
    }
    return new PrivacyCardWidget(
        theme_, [this] { view_.openMakerSite(); }, parent);
}

void SettingsPageWidget::setPage(const SettingsPage& page) {
    auto setter = setters_.begin();
    for (const SettingsSection& section : page.sections) {
        for (const SettingsItem& item : section.content) {
            if (const Setter& set = *setter++) {
                set(item);
            }
        }
    }
}

}  // namespace tarnwick::qt
