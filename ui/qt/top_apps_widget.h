// Draws a list of processes, with or without a title.
#pragma once

#include <vector>

#include "ui/panel/held_order.h"
#include "ui/qt/block_widget.h"
#include "ui/qt/row_content.h"

namespace tarnwick::qt {

/// One line of a list: reads as "name, figure" and paints again only when it says something else.
/// A line that says nothing is not there for anybody, though its place is.
class ListLine final : public QWidget {
    Q_OBJECT

 public:
    ListLine(const Theme& theme, QAccessible::Role role, QWidget* parent)
        : QWidget(parent), theme_(theme), role_(role) {
        // A line that comes or goes under the pointer must not tell the list that it was left.
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

    void setContent(const RowContent& content);
    const RowContent& content() const { return content_; }
    QAccessible::Role accessibleRole() const { return role_; }

 protected:
    void paintEvent(QPaintEvent* event) override;

 private:
    const Theme& theme_;
    const QAccessible::Role role_;
    RowContent content_;
};

/// The lines of a list, from top to bottom. From the first move of the pointer over them on every
/// process keeps its line, with its latest figure; the latest order comes when the pointer has left
/// or the list is let go. A pointer that lies where the list appears holds nothing.
template <class List>
class ProcessListWidget : public ValueBlockWidget<List> {
 public:
    ProcessListWidget(const Theme& theme, QWidget* parent);

    int heightFor(int width) const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::List; }
    bool isHeld() const override { return isHeld_; }
    void letGo() override;
    void lookForPointer() override;

 protected:
    void valueChanged() override;
    bool paintsItself() const override { return false; }
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    QString cutTextAt(const QPoint& position) const override;

 private:
    /// The title, where the list has one, then the rows.
    std::vector<RowContent> contents() const;
    void showLines();
    void placeLines();

    /// Where the pointer was when the page was laid out or scrolled last, on the screen.
    QPoint pointer_;
    bool isHeld_ = false;
    ProcessSlots order_;
    std::vector<ListLine*> lines_;
};

using TopAppsWidget = ProcessListWidget<TopAppsSection>;
using TopAppsListWidget = ProcessListWidget<TopAppsList>;

}  // namespace tarnwick::qt
