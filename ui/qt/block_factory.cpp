// SPDX-License-Identifier: MIT
#include "ui/qt/block_factory.h"

#include <QPainter>
#include <QTransform>
#include <algorithm>
#include <cmath>
#include <type_traits>

#include "ui/qt/block_widget.h"
#include "ui/qt/button_blocks.h"
#include "ui/qt/grid.h"
#include "ui/qt/row_content.h"
#include "ui/qt/top_apps_widget.h"
#include "ui/qt/trend_row_widget.h"
#include "ui/qt/usage_bar_widget.h"

namespace tarnwick::qt {

namespace {

/// Draws a hairline across the page.
class DividerWidget final : public ValueBlockWidget<PanelDivider> {
 public:
    using ValueBlockWidget::ValueBlockWidget;

    int heightFor(int) const override { return grid::kHairline; }
    QAccessible::Role accessibleRole() const override { return QAccessible::Separator; }

 protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        // Whole pixels, so that every divider is equally thin: from the first row that the toolkit
        // leaves the widget, by rounding. Any row above is cut.
        const QTransform& device = painter.deviceTransform();
        const int first = qRound(device.map(QPointF(0, 0)).y());
        const qreal top = device.inverted().map(QPointF(0, first)).y();
        const qreal rows = std::max(1.0, std::floor(device.m22() * grid::kHairline));
        painter.fillRect(QRectF(0, top, width(), rows / device.m22()),
                         theme().color(ColorRole::hairline));
    }
};

/// Draws a block that is a row of text: each that rowContent() knows.
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

struct Maker {
    const Theme& theme;
    const std::shared_ptr<Motion>& motion;
    const PressHandler& press;
    QWidget* parent;

    BlockWidget* operator()(const PanelHeader&) const {
        return new PanelHeaderWidget(theme, motion, press, parent);
    }
    BlockWidget* operator()(const StatusRow&) const {
        return new RowWidget<StatusRow>(theme, parent);
    }
    BlockWidget* operator()(const NoticeRow&) const {
        return new RowWidget<NoticeRow>(theme, parent);
    }
    BlockWidget* operator()(const UsageBar&) const {
        return new UsageBarWidget(theme, motion, parent);
    }
    BlockWidget* operator()(const SectionHeader&) const {
        return new RowWidget<SectionHeader>(theme, parent);
    }
    BlockWidget* operator()(const CaptionText&) const {
        return new RowWidget<CaptionText>(theme, parent);
    }
    BlockWidget* operator()(const InfoRow&) const { return new RowWidget<InfoRow>(theme, parent); }
    BlockWidget* operator()(const NavigationButton&) const {
        return new NavigationButtonWidget(theme, motion, press, parent);
    }
    BlockWidget* operator()(const TopAppsSection&) const {
        return new TopAppsWidget(theme, parent);
    }
    BlockWidget* operator()(const PanelDivider&) const { return new DividerWidget(theme, parent); }
    BlockWidget* operator()(const FooterRow&) const {
        return new FooterRowWidget(theme, motion, press, parent);
    }
    BlockWidget* operator()(const DetailHeader&) const {
        return new DetailHeaderWidget(theme, motion, press, parent);
    }
    BlockWidget* operator()(const GroupTitle&) const {
        return new RowWidget<GroupTitle>(theme, parent);
    }
    BlockWidget* operator()(const TrendRow&) const { return new TrendRowWidget(theme, parent); }
    BlockWidget* operator()(const TopAppsList&) const {
        return new TopAppsListWidget(theme, parent);
    }
};

}  // namespace

BlockWidget* makeBlockWidget(const PanelBlock& block, const Theme& theme,
                             const std::shared_ptr<Motion>& motion, const PressHandler& press,
                             QWidget* parent) {
    BlockWidget* widget = std::visit(Maker{theme, motion, press, parent}, block);
    widget->setBlock(block);
    return widget;
}

}  // namespace tarnwick::qt
