#include "ui/qt/block_factory.h"

#include "ui/qt/button_blocks.h"
#include "ui/qt/divider_widget.h"
#include "ui/qt/row_widgets.h"
#include "ui/qt/top_apps_widget.h"
#include "ui/qt/trend_row_widget.h"
#include "ui/qt/usage_bar_widget.h"

namespace tarnwick::qt {

namespace {

struct Maker {
    const Theme& theme;
    const std::shared_ptr<Motion>& motion;
    const PressHandler& press;
    QWidget* parent;

    BlockWidget* operator()(const PanelHeader&) const {
        return new PanelHeaderWidget(theme, press, parent);
    }
    BlockWidget* operator()(const StatusRow&) const { return new StatusRowWidget(theme, parent); }
    BlockWidget* operator()(const NoticeRow&) const { return new NoticeRowWidget(theme, parent); }
    BlockWidget* operator()(const UsageBar&) const {
        return new UsageBarWidget(theme, motion, parent);
    }
    BlockWidget* operator()(const SectionHeader&) const {
        return new SectionHeaderWidget(theme, parent);
    }
    BlockWidget* operator()(const CaptionText&) const {
        return new CaptionTextWidget(theme, parent);
    }
    BlockWidget* operator()(const InfoRow&) const { return new InfoRowWidget(theme, parent); }
    BlockWidget* operator()(const NavigationButton&) const {
        return new NavigationButtonWidget(theme, press, parent);
    }
    BlockWidget* operator()(const TopAppsSection&) const {
        return new TopAppsWidget(theme, parent);
    }
    BlockWidget* operator()(const PanelDivider&) const { return new DividerWidget(theme, parent); }
    BlockWidget* operator()(const FooterRow&) const {
        return new FooterRowWidget(theme, press, parent);
    }
    BlockWidget* operator()(const DetailHeader&) const {
        return new DetailHeaderWidget(theme, press, parent);
    }
    BlockWidget* operator()(const GroupTitle&) const { return new GroupTitleWidget(theme, parent); }
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
