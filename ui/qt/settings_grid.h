// SPDX-License-Identifier: MIT
// The measures that the settings window's widgets share, in logical pixels.
#pragma once

namespace tarnwick::qt::settings_grid {

/// Between the window's edges and the content of a tab.
inline constexpr int kMargin = 20;
/// Above the content of a tab.
inline constexpr int kTopMargin = 16;
inline constexpr int kTabBarMargin = 8;
inline constexpr int kTabSymbol = 20;
inline constexpr int kTabPaddingX = 15;
inline constexpr int kTabPaddingY = 5;
inline constexpr int kTabGap = 3;
inline constexpr int kTabSpacing = 8;
inline constexpr int kTabCorner = 8;
inline constexpr int kCardCorner = 10;
inline constexpr int kCardPadding = 14;
inline constexpr int kCardOutline = 1;
inline constexpr int kSelectedOutline = 2;
/// Between the heading of a section and its content.
inline constexpr int kHeadingGap = 6;
/// Between the texts of a card that belong together.
inline constexpr int kTextGap = 2;
/// Between the parts of a card.
inline constexpr int kPartGap = 8;
inline constexpr int kStripCorner = 8;
inline constexpr int kRadioSymbol = 17;
inline constexpr int kPreviewSymbol = 15;
inline constexpr int kPreviewGap = 6;
inline constexpr int kSymbolGap = 8;
inline constexpr int kSwitchWidth = 38;
inline constexpr int kSwitchHeight = 22;
/// Between a switch's edge and its knob.
inline constexpr int kKnobGap = 2;
inline constexpr int kButtonPaddingX = 12;
inline constexpr int kButtonCorner = 6;
inline constexpr int kStatusSymbol = 14;
inline constexpr int kStatusGap = 6;
inline constexpr int kPillPaddingX = 9;
inline constexpr int kPillPaddingY = 4;
inline constexpr int kPillGap = 6;
/// Across the coloured dot of a thumb.
inline constexpr int kThumbDot = 8;
inline constexpr int kDraggedThumbDot = 10;
inline constexpr int kScrollBar = 10;
inline constexpr int kScrollHandle = 6;

}  // namespace tarnwick::qt::settings_grid
