// SPDX-License-Identifier: MIT
// Rows of the panel: a symbol, a text at the left and a text at the right, on one baseline.
#pragma once

#include <QRect>
#include <QString>
#include <optional>
#include <string>

#include "ui/panel/page.h"
#include "ui/qt/theme.h"

class QPainter;

namespace tarnwick::qt {

struct RowText {
    QString text;
    FontRole font = FontRole::caption;
    ColorRole colour = ColorRole::secondaryText;

    bool operator==(const RowText&) const = default;
};

struct RowContent {
    struct Symbol {
        std::string name;
        QColor colour;
        /// Logical pixels. A symbol that is smaller than the others is centred in the same room.
        int size;

        bool operator==(const Symbol&) const = default;
    };

    std::optional<Symbol> symbol;
    RowText leading;
    /// If its text is empty, the leading text has the whole row.
    RowText trailing;
    /// Stands before the trailing text.
    std::optional<Symbol> mark{};

    bool operator==(const RowContent&) const = default;
};

RowContent rowContent(const StatusRow& row, const Theme& theme);
RowContent rowContent(const NoticeRow& row, const Theme& theme);
RowContent rowContent(const UsageBar& bar, const Theme& theme);
RowContent rowContent(const SectionHeader& header, const Theme& theme);
RowContent rowContent(const CaptionText& caption, const Theme& theme);
RowContent rowContent(const InfoRow& row, const Theme& theme);
RowContent rowContent(const GroupTitle& group, const Theme& theme);
RowContent rowContent(const ProcessRow& row, const Theme& theme);

/// The mark for the level of a figure in that colour; absent if the colour needs none.
std::optional<RowContent::Symbol> levelMarkSymbol(Tint tint, const Theme& theme);

int rowHeight(const RowContent& row, const Theme& theme);
/// Texts that do not fit are cut at the end. The trailing one is cut only if it would take most of
/// the row by itself.
void paintRow(QPainter& painter, const RowContent& row, const Theme& theme, const QRect& rect);
/// The full text of everything that a row of that width cuts, for a tool tip; empty if it cuts
/// nothing.
QString cutText(const RowContent& row, const Theme& theme, int width);

}  // namespace tarnwick::qt
