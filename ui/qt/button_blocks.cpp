#include "ui/qt/button_blocks.h"

#include <QPainter>
#include <algorithm>
#include <utility>

#include "ui/qt/grid.h"
#include "ui/qt/wrapped_text.h"

namespace tarnwick::qt {

namespace {

constexpr int kSummaryLines = 2;
/// Between the header's title row and its summary.
constexpr int kSummaryGap = 2;

/// Makes as many buttons as there are values, and shows them.
void showButtons(std::vector<ButtonWidget*>& widgets, const std::vector<PanelButton>& buttons,
                 ButtonKind kind, const Theme& theme, const PressHandler& press, QWidget* parent) {
    while (widgets.size() > buttons.size()) {
        widgets.back()->hide();
        widgets.back()->deleteLater();
        widgets.pop_back();
    }
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        if (i == widgets.size()) {
            widgets.push_back(new ButtonWidget(kind, buttons[i], theme, press, parent));
            widgets.back()->show();
        } else {
            widgets[i]->setButton(buttons[i]);
        }
    }
}

}  // namespace

PanelHeaderWidget::PanelHeaderWidget(const Theme& theme, PressHandler press, QWidget* parent)
    : ValueBlockWidget(theme, parent), press_(std::move(press)) {}

void PanelHeaderWidget::valueChanged() {
    showButtons(buttons_, value().buttons, ButtonKind::icon, theme(), press_, this);
    placeButtons();
}

void PanelHeaderWidget::resizeEvent(QResizeEvent*) {
    placeButtons();
}

int PanelHeaderWidget::titleRowHeight() const {
    return std::max(grid::kIconButtonSize, theme().style(FontRole::headline).lineHeight());
}

QStringList PanelHeaderWidget::summaryLines(int width) const {
    return wrapped(QString::fromStdString(value().summary), theme().style(FontRole::caption), width,
                   kSummaryLines);
}

void PanelHeaderWidget::placeButtons() {
    int right = width();
    for (auto button = buttons_.rbegin(); button != buttons_.rend(); ++button) {
        const QSize size = (*button)->sizeHint();
        (*button)->setGeometry(right - size.width(), (titleRowHeight() - size.height()) / 2,
                               size.width(), size.height());
        right -= size.width() + grid::kIconButtonGap;
    }
}

int PanelHeaderWidget::heightFor(int width) const {
    const int lines = static_cast<int>(summaryLines(width).size());
    return titleRowHeight() + kSummaryGap + lines * theme().style(FontRole::caption).lineHeight();
}

void PanelHeaderWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const TextStyle& title = theme().style(FontRole::headline);
    title.draw(painter, QPointF(0, (titleRowHeight() - title.lineHeight()) / 2 + title.ascent()),
               QString::fromStdString(value().title), theme().color(ColorRole::text));
    const TextStyle& caption = theme().style(FontRole::caption);
    int baseline = titleRowHeight() + kSummaryGap + caption.ascent();
    for (const QString& line : summaryLines(width())) {
        caption.draw(painter, QPointF(0, baseline), line, theme().color(ColorRole::secondaryText));
        baseline += caption.lineHeight();
    }
}

QString PanelHeaderWidget::cutTextAt(const QPoint& position) const {
    const QString summary = QString::fromStdString(value().summary);
    return position.y() >= titleRowHeight() && summaryLines(width()).join(' ') != summary
               ? summary
               : QString();
}

NavigationButtonWidget::NavigationButtonWidget(const Theme& theme, PressHandler press,
                                               QWidget* parent)
    : ValueBlockWidget(theme, parent), press_(std::move(press)) {}

void NavigationButtonWidget::valueChanged() {
    showButtons(buttons_, {value().button}, ButtonKind::navigation, theme(), press_, this);
}

void NavigationButtonWidget::resizeEvent(QResizeEvent*) {
    buttons_.front()->setGeometry(rect());
}

int NavigationButtonWidget::heightFor(int) const {
    return buttons_.front()->sizeHint().height();
}

DetailHeaderWidget::DetailHeaderWidget(const Theme& theme, PressHandler press, QWidget* parent)
    : ValueBlockWidget(theme, parent), press_(std::move(press)) {}

void DetailHeaderWidget::valueChanged() {
    showButtons(buttons_, {value().back, value().refresh}, ButtonKind::link, theme(), press_, this);
    placeButtons();
}

void DetailHeaderWidget::resizeEvent(QResizeEvent*) {
    placeButtons();
}

// The words, not the grounds under the pointer, end where the page's other texts do.
void DetailHeaderWidget::placeButtons() {
    const QSize back = buttons_.front()->sizeHint();
    const QSize refresh = buttons_.back()->sizeHint();
    buttons_.front()->setGeometry(0, (height() - back.height()) / 2, back.width(), back.height());
    buttons_.back()->setGeometry(width() - refresh.width(), (height() - refresh.height()) / 2,
                                 refresh.width(), refresh.height());
}

int DetailHeaderWidget::heightFor(int) const {
    return std::max({buttons_.front()->sizeHint().height(), buttons_.back()->sizeHint().height(),
                     theme().style(FontRole::headline).lineHeight()});
}

void DetailHeaderWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const TextStyle& style = theme().style(FontRole::headline);
    const int left = buttons_.front()->geometry().right() + 1;
    const int right = buttons_.back()->geometry().left();
    const QString title = shownTitle();
    const qreal centred = (width() - style.width(title)) / 2;
    const qreal x = std::max<qreal>(left, std::min(centred, right - style.width(title)));
    style.draw(painter, QPointF(x, (height() - style.lineHeight()) / 2 + style.ascent()), title,
               theme().color(ColorRole::text));
}

QString DetailHeaderWidget::shownTitle() const {
    const int left = buttons_.front()->geometry().right() + 1;
    const int right = buttons_.back()->geometry().left();
    return theme()
        .style(FontRole::headline)
        .elided(QString::fromStdString(value().title), right - left);
}

QString DetailHeaderWidget::cutTextAt(const QPoint&) const {
    const QString title = QString::fromStdString(value().title);
    return shownTitle() == title ? QString() : title;
}

FooterRowWidget::FooterRowWidget(const Theme& theme, PressHandler press, QWidget* parent)
    : ValueBlockWidget(theme, parent), press_(std::move(press)) {}

void FooterRowWidget::valueChanged() {
    showButtons(buttons_, value().buttons, ButtonKind::title, theme(), press_, this);
    placeButtons();
}

void FooterRowWidget::resizeEvent(QResizeEvent*) {
    placeButtons();
}

int FooterRowWidget::heightFor(int) const {
    int height = 0;
    for (const ButtonWidget* button : buttons_) {
        height = std::max(height, button->sizeHint().height());
    }
    return height;
}

// From the leading edge on, with the last one at the trailing edge; each gets its share of the row
// at most, so that none covers another.
void FooterRowWidget::placeButtons() {
    if (buttons_.empty()) {
        return;
    }
    const int count = static_cast<int>(buttons_.size());
    const int room = width() - (count - 1) * FooterRow::kSpacing;
    int wanted = 0;
    for (const ButtonWidget* button : buttons_) {
        wanted += button->sizeHint().width();
    }
    int x = 0;
    for (int i = 0; i < count; ++i) {
        ButtonWidget* button = buttons_[static_cast<std::size_t>(i)];
        const QSize size = button->sizeHint();
        const int buttonWidth =
            wanted <= room ? size.width() : std::max(0, size.width() * room / wanted);
        const int left = i > 0 && i == count - 1 ? width() - buttonWidth : x;
        button->setGeometry(left, 0, buttonWidth, size.height());
        x += buttonWidth + FooterRow::kSpacing;
    }
}

}  // namespace tarnwick::qt
