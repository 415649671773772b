// The building blocks that are rows of text.
#pragma once

#include <QPainter>
#include <type_traits>

#include "ui/qt/block_widget.h"
#include "ui/qt/row_content.h"

namespace tarnwick::qt {

/// For every block that rowContent() knows.
template <class Value>
class RowWidget final : public ValueBlockWidget<Value> {
 public:
    using ValueBlockWidget<Value>::ValueBlockWidget;

    int heightFor(int) const override { return rowHeight(content(), this->theme()); }
    QAccessible::Role accessibleRole() const override {
        return std::is_same_v<Value, GroupTitle> || std::is_same_v<Value, SectionHeader>
                   ? QAccessible::Heading
                   : QAccessible::StaticText;
    }

 protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        paintRow(painter, content(), this->theme(), this->rect());
    }
    QString cutTextAt(const QPoint&) const override {
        return cutText(content(), this->theme(), this->width());
    }

 private:
    RowContent content() const { return rowContent(this->value(), this->theme()); }
};

using StatusRowWidget = RowWidget<StatusRow>;
using NoticeRowWidget = RowWidget<NoticeRow>;
using SectionHeaderWidget = RowWidget<SectionHeader>;
using CaptionTextWidget = RowWidget<CaptionText>;
using InfoRowWidget = RowWidget<InfoRow>;
using GroupTitleWidget = RowWidget<GroupTitle>;

}  // namespace tarnwick::qt
