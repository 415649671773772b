// SPDX-License-Identifier: MIT
#include "ui/qt/row_content.h"

#include <QPainter>
#include <algorithm>

#include "ui/panel/panel_figures.h"
#include "ui/qt/grid.h"
#include "ui/qt/symbols.h"

namespace tarnwick::qt {

namespace {

/// The share of a row that the leading text keeps when both texts are long.
constexpr qreal kLeadingShare = 0.3;

QString text(const std::string& utf8) {
    return QString::fromStdString(utf8);
}

RowContent::Symbol symbol(const std::string& name, const Theme& theme, ColorRole colour) {
    return {name, theme.color(colour), theme.scaled(grid::kSymbolSize)};
}

struct Fitted {
    qreal leadingX;
    QString leading;
    QString trailing;
    qreal trailingWidth;
};

Fitted fitted(const RowContent& row, const Theme& theme, qreal width) {
    const TextStyle& leadingStyle = theme.style(row.leading.font);
    const TextStyle& trailingStyle = theme.style(row.trailing.font);
    const qreal leadingX = row.symbol ? theme.scaled(grid::kSymbolSize) + grid::kSymbolGap : 0;
    const qreal room = width - leadingX - (row.mark ? row.mark->size + grid::kMarkGap : 0);
    if (row.trailing.text.isEmpty()) {
        return {leadingX, leadingStyle.elided(row.leading.text, room), {}, 0};
    }
    const qreal leadingWidth = leadingStyle.width(row.leading.text);
    const qreal wholeWidth = trailingStyle.width(row.trailing.text);
    if (leadingWidth + grid::kColumnGap + wholeWidth <= room) {
        return {leadingX, row.leading.text, row.trailing.text, wholeWidth};
    }
    const qreal kept = std::min(leadingWidth, room * kLeadingShare);
    const QString trailing =
        trailingStyle.elided(row.trailing.text, room - grid::kColumnGap - kept);
    const qreal trailingWidth = trailingStyle.width(trailing);
    return {leadingX,
            leadingStyle.elided(row.leading.text, room - grid::kColumnGap - trailingWidth),
            trailing, trailingWidth};
}

}  // namespace

RowContent rowContent(const StatusRow& row, const Theme& theme) {
    return {symbol(row.icon, theme, ColorRole::secondaryText),
            {text(row.title), FontRole::subheadline, ColorRole::secondaryText},
            row.isProminent
                ? RowText{text(row.value), FontRole::captionMedium, ColorRole::text}
                : RowText{text(row.value), FontRole::caption, ColorRole::secondaryText}};
}

RowContent rowContent(const NoticeRow& row, const Theme& theme) {
    return {RowContent::Symbol{row.icon, theme.color(row.tint), theme.scaled(grid::kMarkSize)},
            {text(row.text), FontRole::caption, ColorRole::secondaryText},
            {}};
}

RowContent rowContent(const UsageBar& bar, const Theme& theme) {
    return {symbol(bar.icon, theme, ColorRole::text),
            {text(bar.title), FontRole::subheadline, ColorRole::text},
            {text(bar.detail), FontRole::caption, ColorRole::secondaryText},
            levelMarkSymbol(bar.tint, theme)};
}

RowContent rowContent(const SectionHeader& header, const Theme& theme) {
    return {symbol(header.icon, theme, ColorRole::text),
            {text(header.title), FontRole::subheadline, ColorRole::text},
            {}};
}

RowContent rowContent(const CaptionText& caption, const Theme&) {
    return {{}, {text(caption.text), FontRole::caption, ColorRole::secondaryText}, {}};
}

RowContent rowContent(const InfoRow& row, const Theme&) {
    return {{},
            {text(row.label), FontRole::caption, ColorRole::secondaryText},
            {text(row.value), FontRole::captionMedium, ColorRole::text}};
}

RowContent rowContent(const GroupTitle& group, const Theme&) {
    return {{}, {text(group.title), FontRole::subheadlineMedium, ColorRole::text}, {}};
}

RowContent rowContent(const ProcessRow& row, const Theme&) {
    return {{},
            {text(row.process.name), FontRole::caption, ColorRole::text},
            {text(row.valueText(row.process)), FontRole::caption, ColorRole::secondaryText}};
}

std::optional<RowContent::Symbol> levelMarkSymbol(Tint tint, const Theme& theme) {
    const std::string_view name = levelMark(tint);
    if (name.empty()) {
        return std::nullopt;
    }
    return RowContent::Symbol{std::string(name), theme.color(tint), theme.scaled(grid::kMarkSize)};
}

int rowHeight(const RowContent& row, const Theme& theme) {
    return std::max(
        {row.symbol ? row.symbol->size : 0, theme.style(row.leading.font).lineHeight(),
         row.trailing.text.isEmpty() ? 0 : theme.style(row.trailing.font).lineHeight()});
}

void paintRow(QPainter& painter, const RowContent& row, const Theme& theme, const QRect& rect) {
    const Fitted fit = fitted(row, theme, rect.width());
    if (row.symbol) {
        paintSymbol(painter, row.symbol->name, row.symbol->colour,
                    QPointF(rect.left() + (theme.scaled(grid::kSymbolSize) - row.symbol->size) / 2,
                            rect.top() + (rect.height() - row.symbol->size) / 2),
                    row.symbol->size);
    }
    const TextStyle& leading = theme.style(row.leading.font);
    const int baseline = rect.top() + (rect.height() - leading.lineHeight()) / 2 + leading.ascent();
    leading.draw(painter, QPointF(rect.left() + fit.leadingX, baseline), fit.leading,
                 theme.color(row.leading.colour));
    if (row.mark) {
        paintSymbol(painter, row.mark->name, row.mark->colour,
                    QPointF(rect.left() + rect.width() - fit.trailingWidth - grid::kMarkGap -
                                row.mark->size,
                            rect.top() + (rect.height() - row.mark->size) / 2),
                    row.mark->size);
    }
    theme.style(row.trailing.font)
        .draw(painter, QPointF(rect.left() + rect.width() - fit.trailingWidth, baseline),
              fit.trailing, theme.color(row.trailing.colour));
}

QString cutText(const RowContent& row, const Theme& theme, int width) {
    const Fitted fit = fitted(row, theme, width);
    QStringList cut;
    if (fit.leading != row.leading.text) {
        cut << row.leading.text;
    }
    if (fit.trailing != row.trailing.text) {
        cut << row.trailing.text;
    }
    return cut.join('\n');
}

}  // namespace tarnwick::qt
