// SPDX-License-Identifier: MIT
#include "ui/qt/slim_scroll_bar.h"

#include <QApplication>
#include <QPainter>
#include <QPointer>
#include <QProxyStyle>
#include <QStyleOptionSlider>
#include <algorithm>

#include "ui/qt/settings_grid.h"

namespace tarnwick::qt {

namespace {

constexpr int kShortestHandle = 28;
/// Between the bar's ends and its handle.
constexpr int kEndGap = 2;

/// A groove from end to end, without buttons. All bars share one, because each SlimStyle
/// holds a style of the toolkit of its own.
class SlimStyle final : public QProxyStyle {
 public:
    static SlimStyle* shared() {
        static QPointer<SlimStyle> style;
        if (style == nullptr) {
            style = new SlimStyle;
            style->setParent(qApp);
        }
        return style;
    }

    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override {
        const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (control != CC_ScrollBar || bar == nullptr) {
            return QProxyStyle::subControlRect(control, option, part, widget);
        }
        const QRect groove = bar->rect.adjusted(0, kEndGap, 0, -kEndGap);
        const int range = bar->maximum - bar->minimum;
        int length = groove.height();
        if (range > 0) {
            length = static_cast<int>(qint64{length} * bar->pageStep / (range + bar->pageStep));
        }
        length = std::clamp(length, std::min(kShortestHandle, groove.height()), groove.height());
        const int start =
            groove.top() + sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition,
                                                   groove.height() - length, bar->upsideDown);
        switch (part) {
            case SC_ScrollBarGroove:
                return groove;
            case SC_ScrollBarSlider:
                return {groove.left(), start, groove.width(), length};
            case SC_ScrollBarSubPage:
                return {groove.left(), groove.top(), groove.width(), start - groove.top()};
            case SC_ScrollBarAddPage:
                return {groove.left(), start + length, groove.width(),
                        groove.bottom() + 1 - start - length};
            default:
                return {};
        }
    }
};

}  // namespace

SlimScrollBar::SlimScrollBar(const Theme& theme, QWidget* parent)
    : QScrollBar(Qt::Vertical, parent), theme_(theme) {
    setStyle(SlimStyle::shared());
}

QSize SlimScrollBar::sizeHint() const {
    return {settings_grid::kScrollBar, QScrollBar::sizeHint().height()};
}

void SlimScrollBar::paintEvent(QPaintEvent*) {
    if (maximum() <= minimum()) {
        return;
    }
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRectF handle =
        style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
    constexpr qreal width = settings_grid::kScrollHandle;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(
        theme_.color(isSliderDown() ? ColorRole::secondaryText : ColorRole::controlPressed));
    painter.drawRoundedRect(
        QRectF((this->width() - width) / 2, handle.top(), width, handle.height()), width / 2,
        width / 2);
}

}  // namespace tarnwick::qt
