#include "ui/qt/top_apps_widget.h"

#include <QPainter>
#include <QtMath>
#include <string>
#include <type_traits>

namespace tarnwick::qt {

namespace {

/// Logical pixels between the leading edges of the block and of its lines.
template <class List>
int indent(const List& list) {
    if constexpr (std::is_same_v<List, TopAppsList>) {
        return qRound(list.indent);
    }
    return 0;
}

}  // namespace

template <class List>
std::vector<RowContent> ProcessListWidget<List>::lines() const {
    std::vector<RowContent> lines;
    if constexpr (std::is_same_v<List, TopAppsSection>) {
        lines.push_back(rowContent(GroupTitle{this->value().title}, this->theme()));
    }
    for (const ProcessRow& row : this->value().rows()) {
        lines.push_back(rowContent(row, this->theme()));
    }
    if (this->value().processes.empty()) {
        lines.push_back(rowContent(CaptionText{std::string(List::kEmptyText)}, this->theme()));
    }
    return lines;
}

template <class List>
template <class Visit>
int ProcessListWidget<List>::forEachLine(int width, Visit visit) const {
    const int x = indent(this->value());
    int y = 0;
    for (const RowContent& line : lines()) {
        if (y > 0) {
            y += kRowSpacing;
        }
        const int height = rowHeight(line, this->theme());
        visit(line, QRect(x, y, width - x, height));
        y += height;
    }
    return y;
}

template <class List>
int ProcessListWidget<List>::heightFor(int width) const {
    return forEachLine(width, [](const RowContent&, const QRect&) {});
}

template <class List>
void ProcessListWidget<List>::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    forEachLine(this->width(), [&](const RowContent& line, const QRect& rect) {
        paintRow(painter, line, this->theme(), rect);
    });
}

template <class List>
QString ProcessListWidget<List>::cutTextAt(const QPoint& position) const {
    QString text;
    forEachLine(this->width(), [&](const RowContent& line, const QRect& rect) {
        if (rect.contains(position)) {
            text = cutText(line, this->theme(), rect.width());
        }
    });
    return text;
}

template class ProcessListWidget<TopAppsSection>;
template class ProcessListWidget<TopAppsList>;

}  // namespace tarnwick::qt
