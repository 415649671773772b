// SPDX-License-Identifier: MIT
// Puts the building blocks of a page together.
#pragma once

#include <set>
#include <string>

#include "ui/panel/page.h"

namespace tarnwick {

class PageBuilder {
 public:
    /// Buttons for actions outside `enabledActions` are disabled. The set must outlive the builder.
    explicit PageBuilder(const std::set<PanelAction>& enabledActions)
        : enabledActions_(enabledActions) {}

    /// Adds a block `spaceAbove` points below the last one; the first one has no space above.
    void add(std::string id, int spaceAbove, PanelBlock block, std::string toolTip = {});
    void addDetailHeader(std::string title);
    void addDivider(std::string id);

    PanelButton button(std::string title, PanelAction action, std::string icon = {}) const;

    /// Moves the page out: the builder is empty afterwards.
    Page take();

 private:
    const std::set<PanelAction>& enabledActions_;
    Page page_;
};

}  // namespace tarnwick
