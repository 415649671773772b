// SPDX-License-Identifier: MIT
// Draws a list of processes, with or without a title.
#pragma once

#include <vector>

#include "ui/panel/held_order.h"
#include "ui/qt/block_widget.h"
#include "ui/qt/row_content.h"

namespace tarnwick::qt {

/// One line of a list. Screen readers read it as "name, figure". Paints again only if its content
/// changes. An empty line is hidden, also from screen readers, but keeps its place.
class ListLine final : public QWidget {
    Q_OBJECT

 public:
    ListLine(const Theme& theme, QAccessible::Role role, QWidget* parent)
        : QWidget(parent), theme_(theme), role_(role) {
        // Mouse-transparent, so that a line that comes or goes under the pointer does not send the
        // list a leave event.
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

    /// `toolTip` is what is told beyond the content; may be empty.
    void setContent(const RowContent& content, const QString& toolTip);
    const RowContent& content() const { return content_; }
    QAccessible::Role accessibleRole() const { return role_; }

 protected:
    void paintEvent(QPaintEvent* event) override;

 private:
    const Theme& theme_;
    const QAccessible::Role role_;
    RowContent content_;
};

/// The lines of a list, from top to bottom. The pointer holds the list from its first move over the
/// lines on: each process keeps its line and shows its latest figure. The latest order comes when
/// the pointer leaves or the list is let go. A pointer that is already there when the list appears
/// holds nothing until it moves.
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
    QString toolTipAt(const QPoint& position) const override;
    QRect toolTipPlace(const QPoint& position) const override;

 private:
    /// The title, where the list has one, then the rows.
    std::vector<RowContent> contents() const;
    /// What is told of each of these lines beyond that.
    std::vector<QString> toolTips() const;
    /// The line at this point; null without one.
    const ListLine* lineAt(const QPoint& position) const;
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
