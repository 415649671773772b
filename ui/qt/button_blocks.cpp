// SPDX-License-Identifier: MIT
#include "ui/qt/button_blocks.h"

#include <QEvent>
#include <QPainter>
#include <algorithm>

#include "evaluation/metric_summary_resolver.h"
#include "ui/qt/grid.h"
#include "ui/qt/wrapped_text.h"

namespace tarnwick::qt {

namespace {

/// Between the header's title row and its summary.
constexpr int kSummaryGap = 2;
/// The summary is drawn at most so much smaller than other captions.
constexpr qreal kSmallestSummary = 0.85;

struct SummaryRoom {
    /// Size of the summary's font, as a share of that of other captions.
    qreal share;
    int lines;
};

SummaryRoom measuredRoom(const TextStyle& caption, int width) {
    QStringList sentences;
    qreal widest = 0;
    for (const std::string& text : MetricSummaryResolver::longestPopoverTexts()) {
        sentences << QString::fromStdString(text);
        widest = std::max(widest, caption.width(sentences.back()));
    }
    const auto fits = [&](const TextStyle& style) {
        return std::all_of(sentences.begin(), sentences.end(),
                           [&](const QString& text) { return style.width(text) <= width; });
    };
    constexpr qreal step = 0.01;
    for (qreal share = std::min(1.0, width / widest); share >= kSmallestSummary; share -= step) {
        if (fits(caption.scaled(share))) {
            return {share, 1};
        }
    }
    // No sentence has more words.
    constexpr int most = 9;
    qsizetype lines = 1;
    for (const QString& text : sentences) {
        lines = std::max(lines, wrapped(text, caption, width, most).size());
    }
    return {1, static_cast<int>(lines)};
}

/// Measured anew only when the font has changed since the last call.
SummaryRoom summaryRoom(const Theme& theme) {
    static QString measured;
    static SummaryRoom room{1, 1};
    const TextStyle& caption = theme.style(FontRole::caption);
    const QString font = caption.font().toString();
    if (measured != font) {
        measured = font;
        room = measuredRoom(caption, theme.scaled(kPanelWidth) - 2 * grid::kPadding);
    }
    return room;
}

}  // namespace

template <class Value>
void ButtonBlockWidget<Value>::showButtons(const std::vector<PanelButton>& buttons,
                                           ButtonKind kind) {
    while (buttons_.size() > buttons.size()) {
        buttons_.back()->hide();
        buttons_.back()->deleteLater();
        buttons_.pop_back();
    }
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        if (i == buttons_.size()) {
            buttons_.push_back(
                new ButtonWidget(kind, buttons[i], this->theme(), motion_, press_, this));
            buttons_.back()->show();
        } else {
            buttons_[i]->setButton(buttons[i]);
        }
    }
    placeButtons();
}

template <class Value>
void ButtonBlockWidget<Value>::resizeEvent(QResizeEvent*) {
    if (!buttons_.empty()) {
        placeButtons();
    }
}

template <class Value>
void ButtonBlockWidget<Value>::changeEvent(QEvent* event) {
    ValueBlockWidget<Value>::changeEvent(event);
    if (event->type() == QEvent::FontChange && !buttons_.empty()) {
        placeButtons();
    }
}

template class ButtonBlockWidget<PanelHeader>;
template class ButtonBlockWidget<NavigationButton>;
template class ButtonBlockWidget<DetailHeader>;
template class ButtonBlockWidget<FooterRow>;

// Only the column: what reaches beyond it would make the panel paint its edge and its shadow again.
void PanelHeaderWidget::valueChanged() {
    showButtons(value().buttons, ButtonKind::icon);
    update(sideOverhang(), 0, columnWidth(), height());
}

int PanelHeaderWidget::titleRowHeight() const {
    return std::max(theme().scaled(grid::kIconButtonSize),
                    theme().style(FontRole::headline).lineHeight());
}

const TextStyle& PanelHeaderWidget::summaryStyle() const {
    return theme().style(FontRole::caption, summaryRoom(theme()).share);
}

/// As many lines as there is room for: the header may not have been given its full height yet.
QStringList PanelHeaderWidget::shownSummary() const {
    const TextStyle& style = summaryStyle();
    const int room = height() - titleRowHeight() - kSummaryGap;
    return wrapped(QString::fromStdString(value().summary), style, columnWidth(),
                   std::max(1, room / style.lineHeight()));
}

QString PanelHeaderWidget::shownTitle() const {
    const int right = buttons().front()->x() - grid::kIconButtonGap - sideOverhang();
    return theme().style(FontRole::headline).elided(QString::fromStdString(value().title), right);
}

void PanelHeaderWidget::placeButtons() {
    int right = width();
    for (auto button = buttons().rbegin(); button != buttons().rend(); ++button) {
        const QSize size = (*button)->sizeHint();
        (*button)->setGeometry(right - size.width(), (titleRowHeight() - size.height()) / 2,
                               size.width(), size.height());
        right -= size.width() + grid::kIconButtonGap;
    }
}

int PanelHeaderWidget::heightFor(int) const {
    const int lines = summaryRoom(theme()).lines;
    return titleRowHeight() + kSummaryGap + lines * summaryStyle().lineHeight();
}

void PanelHeaderWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const TextStyle& title = theme().style(FontRole::headline);
    const int left = sideOverhang();
    title.draw(painter, QPointF(left, (titleRowHeight() - title.lineHeight()) / 2 + title.ascent()),
               shownTitle(), theme().color(ColorRole::text));
    const TextStyle& style = summaryStyle();
    int baseline = titleRowHeight() + kSummaryGap + style.ascent();
    for (const QString& line : shownSummary()) {
        style.draw(painter, QPointF(left, baseline), line, theme().color(ColorRole::secondaryText));
        baseline += style.lineHeight();
    }
}

QString PanelHeaderWidget::cutTextAt(const QPoint& position) const {
    const bool isTitle = position.y() < titleRowHeight();
    const QString whole = QString::fromStdString(isTitle ? value().title : value().summary);
    const QString shown = isTitle ? shownTitle() : shownSummary().join(' ');
    return shown == whole ? QString() : whole;
}

void NavigationButtonWidget::valueChanged() {
    showButtons({value().button}, ButtonKind::navigation);
}

void NavigationButtonWidget::placeButtons() {
    buttons().front()->setGeometry(rect());
}

int NavigationButtonWidget::heightFor(int) const {
    return buttons().front()->sizeHint().height();
}

void DetailHeaderWidget::valueChanged() {
    showButtons({value().back, value().refresh}, ButtonKind::link);
}

// Aligns the buttons' words, not their hover backgrounds, with the edges of the page's other texts.
void DetailHeaderWidget::placeButtons() {
    const QSize back = buttons().front()->sizeHint();
    const QSize refresh = buttons().back()->sizeHint();
    buttons().front()->setGeometry(0, (height() - back.height()) / 2, back.width(), back.height());
    buttons().back()->setGeometry(width() - refresh.width(), (height() - refresh.height()) / 2,
                                  refresh.width(), refresh.height());
}

int DetailHeaderWidget::heightFor(int) const {
    return std::max({buttons().front()->sizeHint().height(), buttons().back()->sizeHint().height(),
                     theme().style(FontRole::headline).lineHeight()});
}

void DetailHeaderWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const TextStyle& style = theme().style(FontRole::headline);
    const int left = buttons().front()->geometry().right() + 1;
    const int right = buttons().back()->geometry().left();
    const QString title = shownTitle();
    const qreal centred = (width() - style.width(title)) / 2;
    const qreal x = std::max<qreal>(left, std::min(centred, right - style.width(title)));
    style.draw(painter, QPointF(x, (height() - style.lineHeight()) / 2 + style.ascent()), title,
               theme().color(ColorRole::text));
}

QString DetailHeaderWidget::shownTitle() const {
    const int left = buttons().front()->geometry().right() + 1;
    const int right = buttons().back()->geometry().left();
    return theme()
        .style(FontRole::headline)
        .elided(QString::fromStdString(value().title), right - left);
}

QString DetailHeaderWidget::cutTextAt(const QPoint&) const {
    const QString title = QString::fromStdString(value().title);
    return shownTitle() == title ? QString() : title;
}

void FooterRowWidget::valueChanged() {
    showButtons(value().buttons, ButtonKind::title);
}

int FooterRowWidget::heightFor(int) const {
    int height = 0;
    for (const ButtonWidget* button : buttons()) {
        height = std::max(height, button->sizeHint().height());
    }
    return height;
}

// Places the buttons from the leading edge on, and the last one at the trailing edge. If they do
// not all fit, each one shrinks in proportion, so that none covers another.
void FooterRowWidget::placeButtons() {
    const int count = static_cast<int>(buttons().size());
    const int room = width() - (count - 1) * FooterRow::kSpacing;
    int wanted = 0;
    for (const ButtonWidget* button : buttons()) {
        wanted += button->sizeHint().width();
    }
    int x = 0;
    for (int i = 0; i < count; ++i) {
        ButtonWidget* button = buttons()[static_cast<std::size_t>(i)];
        const QSize size = button->sizeHint();
        const int buttonWidth =
            wanted <= room ? size.width() : std::max(0, size.width() * room / wanted);
        const int left = i > 0 && i == count - 1 ? width() - buttonWidth : x;
        button->setGeometry(left, 0, buttonWidth, size.height());
        x += buttonWidth + FooterRow::kSpacing;
    }
}

}  // namespace tarnwick::qt
