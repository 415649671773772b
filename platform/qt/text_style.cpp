// SPDX-License-Identifier: MIT
#include "platform/qt/text_style.h"

#include <QPainter>
#include <QtMath>
#include <algorithm>

namespace tarnwick::qt {

namespace {

/// Smaller differences in width, in pixels, are rounding errors.
constexpr qreal kAdvanceTolerance = 0.02;
/// Several times as many texts as a page has in one style.
constexpr qsizetype kMostAdvances = 128;

bool isDigit(QChar character) {
    return character >= '0' && character <= '9';
}

}  // namespace

TextStyle::TextStyle(const QFont& font)
    : font_(font),
      metrics_(font),
      ascent_(qCeil(metrics_.ascent())),
      descent_(qCeil(metrics_.descent())) {
    qreal narrowest = metrics_.horizontalAdvance('0');
    for (char digit = '0'; digit <= '9'; ++digit) {
        const qreal advance = metrics_.horizontalAdvance(digit);
        digitCell_ = std::max(digitCell_, advance);
        narrowest = std::min(narrowest, advance);
    }
    digitsDiffer_ = digitCell_ - narrowest > kAdvanceTolerance;
}

TextStyle TextStyle::scaled(qreal share) const {
    QFont font = font_;
    font.setPointSizeF(font.pointSizeF() * share);
    return TextStyle(font);
}

// Right-to-left text is left whole: its parts do not follow each other from left to right.
bool TextStyle::usesCells(const QString& text) const {
    return digitsDiffer_ && std::any_of(text.begin(), text.end(), isDigit) && !text.isRightToLeft();
}

/// Calls `visit` with each digit and each run without digits, with its width and with its offset
/// within that width.
template <class Visit>
void TextStyle::forEachRun(const QString& text, Visit visit) const {
    qsizetype start = 0;
    while (start < text.size()) {
        if (isDigit(text[start])) {
            const QString digit = text.mid(start, 1);
            visit(digit, digitCell_, (digitCell_ - advance(digit)) / 2);
            ++start;
            continue;
        }
        const auto end = std::find_if(text.begin() + start, text.end(), isDigit);
        const QString run = text.mid(start, end - (text.begin() + start));
        visit(run, advance(run), 0);
        start += run.size();
    }
}

qreal TextStyle::advance(const QString& text) const {
    if (const auto known = advances_->constFind(text); known != advances_->constEnd()) {
        return *known;
    }
    // Those of figures that will not come again would pile up.
    if (advances_->size() >= kMostAdvances) {
        advances_->clear();
    }
    const qreal measured = metrics_.horizontalAdvance(text);
    advances_->insert(text, measured);
    return measured;
}

qreal TextStyle::width(const QString& text) const {
    if (!usesCells(text)) {
        return advance(text);
    }
    qreal sum = 0;
    forEachRun(text, [&sum](const QString&, qreal room, qreal) { sum += room; });
    return sum;
}

QString TextStyle::elided(const QString& text, qreal width) const {
    if (this->width(text) <= width) {
        return text;
    }
    // Cells make the cut text wider than the font thinks, so ask for less until it fits.
    QString cut;
    for (qreal target = width; target > 0;) {
        cut = metrics_.elidedText(text, Qt::ElideRight, target);
        const qreal excess = this->width(cut) - width;
        if (excess <= 0) {
            break;
        }
        target -= std::max(excess, qreal(1));
    }
    return cut;
}

void TextStyle::draw(QPainter& painter, const QPointF& baseline, const QString& text,
                     const QColor& colour) const {
    painter.setFont(font_);
    painter.setPen(colour);
    if (!usesCells(text)) {
        painter.drawText(baseline, text);
        return;
    }
    qreal x = baseline.x();
    forEachRun(text, [&](const QString& run, qreal room, qreal offset) {
        painter.drawText(QPointF(x + offset, baseline.y()), run);
        x += room;
    });
}

}  // namespace tarnwick::qt
