// SPDX-License-Identifier: MIT
// Where the panel is placed on the screen.
#pragma once

#include <QRect>
#include <QSize>

namespace tarnwick::qt {

/// Points between the panel and the item that it belongs to.
inline constexpr int kPanelGap = 6;
/// The least distance in points between the panel and the edges of the screen's available area.
inline constexpr int kScreenMargin = 6;

/// The panel's rectangle: centred under `anchor`, or above it if `anchor` is in the lower half of
/// the screen. It is moved as far as needed to lie inside `available` minus the margin. If the
/// panel is too large for that, its upper left corner stays inside.
QRect panelPlacement(const QSize& panel, const QRect& anchor, const QRect& screen,
                     const QRect& available);

/// The new rectangle when an open panel at `current` changes its size to `panel`. The edge beside
/// the anchor stays where it is as long as the panel then lies inside.
QRect panelReplacement(const QRect& current, const QSize& panel, const QRect& anchor,
                       const QRect& screen, const QRect& available);

/// The panel's rectangle inside a window that covers the work area, in that window's coordinates.
/// Where the work area lies on the screen is not known, only how much smaller it is: the bars are
/// taken to be on the sides that `item` is near. The panel hangs from the edge of the half of the
/// screen that `item` lies in, as near to it as fits; beside a bar at the side it begins or ends at
/// its height.
///
/// `item` is the item's point on the screen, from the screen's corner. If the panel is too large,
/// its upper left corner stays inside.
QRect panelInWorkArea(const QSize& panel, const QPoint& item, const QSize& screen,
                      const QSize& workArea);

/// The anchor to use while the item's place is unknown: the right corner where a tray most likely
/// is. At the bottom if only the bottom edge has a bar, otherwise at the top. `isAtBottom` is the
/// choice where no bar is known.
QRect cornerAnchor(const QRect& screen, const QRect& available, bool isAtBottom = false);

}  // namespace tarnwick::qt
