#include "ui/qt/top_apps_widget.h"

#include <QPainter>

namespace tarnwick::qt {

std::vector<RowContent> TopAppsWidget::lines() const {
    RowContent title;
    title.leading = {QString::fromStdString(value().title), FontRole::subheadlineMedium,
                     ColorRole::text};
    std::vector<RowContent> lines{title};
    for (const ProcessRow& row : value().rows()) {
        lines.push_back(rowContent(row, theme()));
    }
    if (value().processes.empty()) {
        lines.push_back(rowContent(CaptionText{std::string(TopAppsSection::kEmptyText)}, theme()));
    }
    return lines;
}

/// The height of all lines.
template <class Visit>
int TopAppsWidget::forEachLine(Visit visit) const {
    int y = 0;
    for (const RowContent& line : lines()) {
        if (y > 0) {
            y += kRowSpacing;
        }
        const int height = rowHeight(line, theme());
        visit(line, QRect(0, y, width(), height));
        y += height;
    }
    return y;
}

int TopAppsWidget::heightFor(int) const {
    return forEachLine([](const RowContent&, const QRect&) {});
}

void TopAppsWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    forEachLine(
        [&](const RowContent& line, const QRect& rect) { paintRow(painter, line, theme(), rect); });
}

QString TopAppsWidget::cutTextAt(const QPoint& position) const {
    QString text;
    forEachLine([&](const RowContent& line, const QRect& rect) {
        if (rect.contains(position)) {
            text = cutText(line, theme(), rect.width());
        }
    });
    return text;
}

}  // namespace tarnwick::qt
