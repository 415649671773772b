// SPDX-License-Identifier: MIT
// A page of the panel as a value: its building blocks from top to bottom.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "ui/panel/blocks.h"

namespace tarnwick {

using PanelBlock =
    std::variant<PanelHeader, StatusRow, NoticeRow, UsageBar, SectionHeader, CaptionText, InfoRow,
                 NavigationButton, TopAppsSection, PanelDivider, FooterRow, DetailHeader,
                 GroupTitle, TrendRow, TopAppsList>;

/// The panel's content is exactly this wide, in points, beside texts of a usual size.
inline constexpr int kPanelWidth = 320;

// Points between two neighbours of a page.
inline constexpr int kBlockSpacing = 12;
/// Between the rows of one block.
inline constexpr int kRowSpacing = 6;
inline constexpr int kBarSpacing = 11;
/// Between the bars and the battery.
inline constexpr int kBatterySpacing = 10;

struct PageItem {
    /// Identifies the item within its page; the same item has the same id on the next page.
    std::string id;
    /// Points between this item and the one above it; the first one has none.
    int spaceAbove = kBlockSpacing;
    PanelBlock block;
    /// What is measured here and not shown, in one line; empty for nothing.
    std::string toolTip{};

    bool operator==(const PageItem&) const = default;
};

using Page = std::vector<PageItem>;

}  // namespace tarnwick
