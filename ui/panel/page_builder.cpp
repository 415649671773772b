// SPDX-License-Identifier: MIT
#include "ui/panel/page_builder.h"

#include <utility>

namespace tarnwick {

void PageBuilder::add(std::string id, int spaceAbove, PanelBlock block, std::string toolTip) {
    page_.push_back(
        {std::move(id), page_.empty() ? 0 : spaceAbove, std::move(block), std::move(toolTip)});
}

void PageBuilder::addDetailHeader(std::string title) {
    add("header", 0,
        DetailHeader{std::move(title), button("Back", PanelAction::goBack, "chevron.left"),
                     button("Refresh", PanelAction::refresh)});
}

void PageBuilder::addDivider(std::string id) {
    add(std::move(id), kBlockSpacing, PanelDivider{});
}

PanelButton PageBuilder::button(std::string title, PanelAction action, std::string icon) const {
    return {std::move(title), std::move(icon), action, enabledActions_.contains(action)};
}

Page PageBuilder::take() {
    return std::exchange(page_, {});
}

}  // namespace tarnwick
