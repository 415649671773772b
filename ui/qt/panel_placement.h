// Where on the screen the panel goes.
#pragma once

#include <QRect>
#include <QSize>

namespace tarnwick::qt {

/// Points between the panel and the item that it belongs to.
inline constexpr int kPanelGap = 6;
/// Points that the panel keeps from the edges of the screen's available area.
inline constexpr int kScreenMargin = 6;

/// The panel's rectangle: centred under `anchor`, or above it where that is in the lower half of
/// the screen, and moved as far as it must to lie inside `available` less its margin. A panel too
/// large for that keeps its upper left corner inside.
QRect panelPlacement(const QSize& panel, const QRect& anchor, const QRect& screen,
                     const QRect& available);

/// The same when an open panel at `current` gets another size: the edge beside the anchor stays
/// where it is, wherever that leaves the panel inside.
QRect panelReplacement(const QRect& current, const QSize& panel, const QRect& anchor,
                       const QRect& screen, const QRect& available);

/// What the panel opens beside while the item's place is not known: the right corner where a tray
/// most likely is, at the bottom when only that edge has a bar, else at the top.
QRect cornerAnchor(const QRect& screen, const QRect& available);

}  // namespace tarnwick::qt
