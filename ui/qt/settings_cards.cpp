// SPDX-License-Identifier: MIT
#include "ui/qt/settings_cards.h"

#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <QtMath>
#include <utility>

#include "ui/qt/grid.h"
#include "ui/qt/settings_grid.h"

namespace tarnwick::qt {

namespace {

/// A symbol and a headline beside it.
QHBoxLayout* makeHeadline(const Theme& theme, std::string_view icon, std::string_view title,
                          QWidget* parent) {
    auto* row = new QHBoxLayout;
    row->setSpacing(settings_grid::kSymbolGap);
    auto* symbol = new SymbolWidget(theme, grid::kSymbolSize, parent);
    symbol->setSymbol(icon, ColorRole::text);
    row->addWidget(symbol);
    row->addWidget(new SettingsLabel(theme, FontRole::headline, ColorRole::text, parent, title), 1);
    return row;
}

SettingsLabel* makeCaption(const Theme& theme, std::string_view text, QWidget* parent) {
    return new SettingsLabel(theme, FontRole::caption, ColorRole::secondaryText, parent, text);
}

}  // namespace

SwitchCardWidget::SwitchCardWidget(const Theme& theme, const SwitchRow& row,
                                   std::function<void()> toggle, QWidget* parent)
    : SettingsCardWidget(theme, parent) {
    // Assistive technology reads the parts of a card in the order in which they are made.
    auto* line = new QHBoxLayout;
    line->setSpacing(grid::kColumnGap);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(settings_grid::kTextGap);
    texts->addWidget(
        new SettingsLabel(theme, FontRole::headline, ColorRole::text, this, row.title));
    texts->addWidget(makeCaption(theme, row.caption, this));
    line->addLayout(texts, 1);
    switch_ = new SettingsSwitchWidget(theme, this);
    switch_->setAccessibleName(fromUtf8(row.title));
    switch_->setAccessibleDescription(fromUtf8(row.caption));
    switch_->setObjectName("switch");
    line->addWidget(switch_);
    column()->addLayout(line);
    connect(switch_, &QAbstractButton::clicked, this, [toggle = std::move(toggle)] { toggle(); });
    setRow(row);
}

void SwitchCardWidget::mousePressEvent(QMouseEvent* event) {
    event->setAccepted(event->button() == Qt::LeftButton);
}

void SwitchCardWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) {
        switch_->click();
    }
}

NoticeCardWidget::NoticeCardWidget(const Theme& theme, QWidget* parent)
    : SettingsCardWidget(theme, parent), text_(makeCaption(theme, {}, this)) {
    auto* symbol = new SymbolWidget(theme, settings_grid::kStatusSymbol, this);
    symbol->setSymbol(ItemNotice::kIcon, ItemNotice::kTint);
    auto* row = new QHBoxLayout;
    row->setSpacing(settings_grid::kStatusGap);
    row->addWidget(symbol);
    row->addWidget(text_, 1);
    column()->addLayout(row);
}

void NoticeCardWidget::setNotice(const ItemNotice& notice) {
    text_->setUtf8(notice.text);
    setVisible(!notice.text.empty());
}

ShortcutCardWidget::ShortcutCardWidget(const Theme& theme, ShortcutField& field, KeyCodes keyCodes,
                                       std::function<void()> clear, QWidget* parent)
    : SettingsCardWidget(theme, parent) {
    column()->addWidget(new SettingsLabel(theme, FontRole::headline, ColorRole::text, this,
                                          ShortcutEditor::kTitle));
    column()->addWidget(makeCaption(theme, ShortcutEditor::kCaption, this));
    field_ = new ShortcutFieldWidget(field, theme, std::move(keyCodes), this);
    clear_ =
        new SettingsButton(theme, SettingsButton::Kind::bordered, ShortcutEditor::kClear, this);
    clear_->setObjectName("clear");
    auto* row = new QHBoxLayout;
    row->setSpacing(settings_grid::kPartGap);
    row->addWidget(field_);
    row->addWidget(clear_);
    row->addStretch();
    column()->addLayout(row);
    for (Line& line : lines_) {
        line = makeLine();
    }
    connect(clear_, &QAbstractButton::clicked, this, [this, clear = std::move(clear)] {
        // The button will be hidden; keep the focus close by.
        if (clear_->hasFocus()) {
            field_->setFocus(Qt::TabFocusReason);
        }
        clear();
    });
}

ShortcutCardWidget::Line ShortcutCardWidget::makeLine() {
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(settings_grid::kStatusGap);
    auto* symbol = new SymbolWidget(theme(), settings_grid::kStatusSymbol, row);
    auto* text = makeCaption(theme(), {}, row);
    layout->addWidget(symbol);
    layout->addWidget(text, 1);
    column()->addWidget(row);
    return {row, symbol, text};
}

void ShortcutCardWidget::resizeEvent(QResizeEvent* event) {
    SettingsCardWidget::resizeEvent(event);
    emit heightChanged();
}

void ShortcutCardWidget::setEditor(const ShortcutEditor& editor) {
    field_->update();
    clear_->setVisible(editor.hasClear);
    setToolTipText(fromUtf8(editor.tip));
    // Screen readers have it with the recorder's own help.
    const QString help = QString(ShortcutField::kAccessibilityHelp) +
                         (editor.tip.empty() ? QString() : ' ' + fromUtf8(editor.tip));
    if (field_->accessibleDescription() != help) {
        field_->setAccessibleDescription(help);
    }
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        const bool isThere = i < editor.lines.size();
        lines_[i].row->setVisible(isThere);
        if (isThere) {
            lines_[i].symbol->setSymbol(editor.lines[i].icon, editor.lines[i].tint);
            lines_[i].text->setUtf8(editor.lines[i].text);
        }
    }
}

ThresholdPillWidget::ThresholdPillWidget(const Theme& theme, QWidget* parent)
    : QWidget(parent), theme_(theme) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ThresholdPillWidget::setPill(const ThresholdValuePill& pill) {
    const QString text = QString::fromStdString(pill.text());
    if (text != text_ || pill.color != tint_) {
        const QSize before = sizeHint();
        text_ = text;
        tint_ = pill.color;
        setAccessibleName(text);
        if (sizeHint() != before) {
            updateGeometry();
        }
        update();
    }
}

QSize ThresholdPillWidget::sizeHint() const {
    using namespace settings_grid;
    return {
        2 * kPillPaddingX + ThresholdValuePill::kDotSize + kPillGap + qCeil(style().width(text_)),
        style().lineHeight() + 2 * kPillPaddingY};
}

void ThresholdPillWidget::paintEvent(QPaintEvent*) {
    using namespace settings_grid;
    constexpr qreal dot = ThresholdValuePill::kDotSize;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme_.color(ColorRole::control));
    painter.drawRoundedRect(rect(), height() / 2.0, height() / 2.0);
    painter.setBrush(theme_.color(tint_));
    painter.drawEllipse(QRectF(kPillPaddingX, (height() - dot) / 2, dot, dot));
    style().draw(painter, QPointF(kPillPaddingX + dot + kPillGap, kPillPaddingY + style().ascent()),
                 text_, theme_.color(ColorRole::text));
}

ThresholdCardWidget::ThresholdCardWidget(const Theme& theme, const ThresholdEditorCard& card,
                                         DualThresholdSlider& slider, QWidget* parent)
    : SettingsCardWidget(theme, parent) {
    column()->addLayout(makeHeadline(theme, card.icon, card.title, this));
    for (ThresholdPillWidget*& pill : pills_) {
        pill = new ThresholdPillWidget(theme, this);
    }
    slider_ = new ThresholdSliderWidget(slider, theme, this);
    auto* row = new QHBoxLayout;
    row->setSpacing(ThresholdEditorCard::kPillSpacing);
    for (ThresholdPillWidget* pill : pills_) {
        row->addWidget(pill);
    }
    row->addStretch();
    column()->addLayout(row);
    column()->addWidget(slider_);
    setCard(card);
}

void ThresholdCardWidget::setCard(const ThresholdEditorCard& card) {
    const auto pills = card.pills();
    for (std::size_t i = 0; i < pills_.size(); ++i) {
        pills_[i]->setPill(pills[i]);
    }
    slider_->refresh();
}

ProgramCardWidget::ProgramCardWidget(const Theme& theme, const ProgramName& name, QWidget* parent)
    : SettingsCardWidget(theme, parent) {
    column()->addWidget(
        new SettingsLabel(theme, FontRole::headline, ColorRole::text, this, ProgramName::kName));
    auto* row = new QHBoxLayout;
    row->addWidget(new SettingsLabel(theme, FontRole::subheadline, ColorRole::secondaryText, this,
                                     ProgramName::kVersionTitle));
    auto* version =
        new SettingsLabel(theme, FontRole::subheadline, ColorRole::text, this, name.version);
    version->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    version->setObjectName("version");
    version->setAttribute(Qt::WA_TransparentForMouseEvents, false);
    version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    row->addWidget(version, 1);
    column()->addLayout(row);
}

FeatureCardWidget::FeatureCardWidget(const Theme& theme, QWidget* parent)
    : SettingsCardWidget(theme, parent) {
    for (const FeatureRow& row : FeatureList::kRows) {
        column()->addLayout(makeHeadline(theme, row.icon, row.title, this));
    }
}

PrivacyCardWidget::PrivacyCardWidget(const Theme& theme, const std::function<void()>& follow,
                                     QWidget* parent)
    : SettingsCardWidget(theme, parent) {
    column()->addWidget(makeCaption(theme, PrivacyNote::kText, this));
    auto* row = new QHBoxLayout;
    row->setSpacing(2 * settings_grid::kPartGap);
    for (const std::string_view title : PrivacyNote::kLinks) {
        auto* link = new SettingsButton(theme, SettingsButton::Kind::link, title, this);
        link->setObjectName("link");
        connect(link, &QAbstractButton::clicked, this, [follow] { follow(); });
        row->addWidget(link);
    }
    row->addStretch();
    column()->addLayout(row);
}

}  // namespace tarnwick::qt
