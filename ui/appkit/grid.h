// SPDX-License-Identifier: MIT
// The measures that the views share, in points.
#pragma once

#include "ui/panel/page.h"
#include "ui/panel/sparkline_view.h"

namespace tarnwick::appkit::grid {

// The panel.

/// Between the panel's edge and its content.
inline constexpr double kPagePadding = 16;
/// Width of every block.
inline constexpr double kBlockWidth = kPanelWidth - 2 * kPagePadding;
inline constexpr double kPanelCorner = 12;
/// Between the panel and the item, and between the panel and the edges of the screen.
inline constexpr double kScreenMargin = 4;
/// Between a symbol and its text.
inline constexpr double kSymbolGap = 8;
/// Between the mark of a level and its figure.
inline constexpr double kMarkGap = 4;
/// The least room between a text at the left and one at the right.
inline constexpr double kColumnGap = 12;
/// Between the header's title and its summary.
inline constexpr double kTitleGap = 4;
inline constexpr double kBarHeight = 6;
inline constexpr double kBarCorner = 3;
/// Between a bar and its label.
inline constexpr double kBarGap = 6;
/// How far a line may reach beyond its points at a peak.
inline constexpr double kLineOverhang = SparklineView::kLineWidth / 2 * SparklineView::kMiterLimit;
/// Side of the area that a press must hit, for a button without border and title.
inline constexpr double kIconButtonSize = 26;
inline constexpr double kIconButtonGap = 6;
inline constexpr double kNavigationHeight = 28;
inline constexpr double kHairline = 1;
/// A step of the arrow keys on a page that is cut off.
inline constexpr double kScrollStep = 40;

// The item in the menu bar.

/// Between the item's content and its ends.
inline constexpr double kItemPadding = 4;

// The settings.

/// Between the window's edge and a page.
inline constexpr double kSettingsPadding = 20;
inline constexpr double kCardCorner = 8;
inline constexpr double kCardPadding = 12;
/// Between the parts of a card, and between a symbol and its text.
inline constexpr double kPartGap = 8;
/// Between the title of a switch and its caption.
inline constexpr double kTextGap = 4;
/// Between the dot of a threshold and its text.
inline constexpr double kPillGap = 4;
inline constexpr double kStripCorner = 8;
/// Across the coloured dot of a thumb.
inline constexpr double kThumbDot = 8;
/// Captions wrap at this width: it fits into a card of the window, also beside a symbol, and where
/// a scroll bar takes room.
inline constexpr double kCaptionWidth = 408;

}  // namespace tarnwick::appkit::grid
