// SPDX-License-Identifier: MIT
#include "ui/qt/top_apps_widget.h"

#include <QCursor>
#include <QPainter>
#include <QStringList>
#include <QtMath>
#include <string>
#include <type_traits>
#include <utility>

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

QString spoken(const RowContent& line) {
    QStringList texts{line.leading.text, line.trailing.text};
    texts.removeAll(QString());
    return texts.join(", ");
}

}  // namespace

void ListLine::setContent(const RowContent& content, const QString& toolTip) {
    const QString name = spoken(content);
    if (accessibleName() != name) {
        setAccessibleName(name);
    }
    if (accessibleDescription() != toolTip) {
        setAccessibleDescription(toolTip);
    }
    setVisible(!name.isEmpty());
    if (content_ != content) {
        content_ = content;
        update();
    }
}

void ListLine::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintRow(painter, content_, theme_, rect());
}

template <class List>
ProcessListWidget<List>::ProcessListWidget(const Theme& theme, QWidget* parent)
    : ValueBlockWidget<List>(theme, parent) {
    this->setMouseTracking(true);
}

template <class List>
std::vector<RowContent> ProcessListWidget<List>::contents() const {
    std::vector<RowContent> contents;
    if constexpr (std::is_same_v<List, TopAppsSection>) {
        contents.push_back(rowContent(GroupTitle{this->value().title}, this->theme()));
    }
    for (const auto& process : order_) {
        contents.push_back(
            process ? rowContent(ProcessRow{*process, this->value().valueText}, this->theme())
                    : RowContent{});
    }
    if (order_.empty()) {
        contents.push_back(rowContent(CaptionText{std::string(List::kEmptyText)}, this->theme()));
    }
    return contents;
}

template <class List>
std::vector<QString> ProcessListWidget<List>::toolTips() const {
    std::vector<QString> toolTips(std::is_same_v<List, TopAppsSection> ? 1 : 0);
    for (const auto& process : order_) {
        toolTips.push_back(process ? QString::fromStdString(
                                         ProcessRow{*process, this->value().valueText}.toolTip())
                                   : QString());
    }
    return toolTips;
}

template <class List>
void ProcessListWidget<List>::valueChanged() {
    const auto& processes = this->value().processes;
    order_ = isHeld_ && !processes.empty() ? heldOrder(order_, processes)
                                           : ProcessSlots(processes.begin(), processes.end());
    showLines();
}

// A widget that comes under a resting pointer also gets a move event; its position is the one that
// the pointer already had.
template <class List>
void ProcessListWidget<List>::mouseMoveEvent(QMouseEvent* event) {
    ValueBlockWidget<List>::mouseMoveEvent(event);
    isHeld_ = isHeld_ || event->globalPosition().toPoint() != pointer_;
}

template <class List>
void ProcessListWidget<List>::leaveEvent(QEvent* event) {
    ValueBlockWidget<List>::leaveEvent(event);
    letGo();
}

// A resting pointer sends no event when the page scrolls below it.
template <class List>
void ProcessListWidget<List>::lookForPointer() {
    pointer_ = QCursor::pos();
    if (!this->window()->underMouse() ||
        !this->visibleRegion().contains(this->mapFromGlobal(pointer_))) {
        letGo();
    }
}

template <class List>
void ProcessListWidget<List>::letGo() {
    if (!std::exchange(isHeld_, false)) {
        return;
    }
    const auto& processes = this->value().processes;
    ProcessSlots latest(processes.begin(), processes.end());
    if (order_ != latest) {
        order_ = std::move(latest);
        showLines();
    }
    emit this->placeChanged();
}

template <class List>
void ProcessListWidget<List>::showLines() {
    const std::vector<RowContent> contents = this->contents();
    std::vector<QString> toolTips = this->toolTips();
    toolTips.resize(contents.size());
    while (lines_.size() > contents.size()) {
        lines_.back()->hide();
        lines_.back()->deleteLater();
        lines_.pop_back();
    }
    for (std::size_t i = 0; i < contents.size(); ++i) {
        if (i == lines_.size()) {
            const bool isTitle = std::is_same_v<List, TopAppsSection> && i == 0;
            lines_.push_back(new ListLine(
                this->theme(), isTitle ? QAccessible::Heading : QAccessible::ListItem, this));
        }
        lines_[i]->setContent(contents[i], toolTips[i]);
    }
    placeLines();
}

template <class List>
void ProcessListWidget<List>::placeLines() {
    const int x = indent(this->value());
    int y = 0;
    for (ListLine* line : lines_) {
        const int height = rowHeight(line->content(), this->theme());
        line->setGeometry(x, y, this->width() - x, height);
        y += height + kRowSpacing;
    }
}

template <class List>
void ProcessListWidget<List>::resizeEvent(QResizeEvent*) {
    placeLines();
}

template <class List>
int ProcessListWidget<List>::heightFor(int) const {
    int height = -kRowSpacing;
    for (const ListLine* line : lines_) {
        height += rowHeight(line->content(), this->theme()) + kRowSpacing;
    }
    return height;
}

template <class List>
const ListLine* ProcessListWidget<List>::lineAt(const QPoint& position) const {
    for (const ListLine* line : lines_) {
        if (line->geometry().contains(position)) {
            return line;
        }
    }
    return nullptr;
}

template <class List>
QString ProcessListWidget<List>::cutTextAt(const QPoint& position) const {
    const ListLine* line = lineAt(position);
    return line == nullptr ? QString() : cutText(line->content(), this->theme(), line->width());
}

template <class List>
QString ProcessListWidget<List>::toolTipAt(const QPoint& position) const {
    const ListLine* line = lineAt(position);
    return line == nullptr ? QString() : line->accessibleDescription();
}

template <class List>
QRect ProcessListWidget<List>::toolTipPlace(const QPoint& position) const {
    const ListLine* line = lineAt(position);
    return line == nullptr ? this->rect() : line->geometry();
}

template class ProcessListWidget<TopAppsSection>;
template class ProcessListWidget<TopAppsList>;

}  // namespace tarnwick::qt
