// SPDX-License-Identifier: MIT
// The measures that the panel's widgets share, in logical pixels.
#pragma once

namespace tarnwick::qt::grid {

/// Between the panel's edge and its content.
inline constexpr int kPadding = 16;
inline constexpr int kPanelCorner = 12;
inline constexpr int kSymbolSize = 16;
/// Between a symbol and its text.
inline constexpr int kSymbolGap = 8;
/// Size of symbols beside caption text: the mark of a level before its figure, and notices.
inline constexpr int kMarkSize = 14;
inline constexpr int kMarkGap = 4;
/// The least room between a text at the left and one at the right.
inline constexpr int kColumnGap = 12;
inline constexpr int kBarHeight = 6;
inline constexpr double kBarCorner = 3;
/// Between a bar and its label.
inline constexpr int kBarGap = 6;
inline constexpr int kButtonCorner = 7;
/// Padding of a button with a title.
inline constexpr int kButtonPaddingX = 10;
inline constexpr int kButtonPaddingY = 4;
/// Between the symbol of a link and its title, and the empty edge of the symbol, which is cut off
/// so that what is drawn stands at the edge of the column.
inline constexpr int kLinkGap = 2;
inline constexpr int kLinkSymbolEdge = 4;
inline constexpr int kIconButtonSize = 26;
/// Between two icon buttons.
inline constexpr int kIconButtonGap = 6;
inline constexpr int kNavigationCorner = 8;
inline constexpr int kNavigationPaddingY = 8;
inline constexpr int kHairline = 1;
inline constexpr int kFocusRing = 2;
/// Between a control and its focus ring.
inline constexpr int kFocusGap = 1;

}  // namespace tarnwick::qt::grid
