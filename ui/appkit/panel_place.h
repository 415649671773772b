// SPDX-License-Identifier: MIT
// Where on the screen the panel is.
#pragma once

#include <algorithm>
#include <optional>

#include "ui/appkit/grid.h"
#include "ui/appkit/screen_frame.h"

namespace tarnwick::appkit {

/// The upper edge stays here for every page; `room` is the greatest height.
struct PanelPlace {
    double x = 0;
    double top = 0;
    double room = 0;

    double heightOf(double page) const { return std::min(page, room); }
};

/// Centred under `item`, the frame of the status item, as far as that is within the screen. In the
/// upper right corner without one. `visible` is the screen without menu bar and Dock.
inline PanelPlace panelPlace(const std::optional<ScreenFrame>& item, const ScreenFrame& visible) {
    constexpr double kMargin = grid::kScreenMargin;
    const double left = visible.x + kMargin;
    const double right = visible.x + visible.width - kMargin;
    const double furthest = std::max(left, right - kPanelWidth);
    const double wanted = item ? item->x + item->width / 2 - kPanelWidth / 2.0 : furthest;
    const double top = item ? item->y - kMargin : visible.y + visible.height - kMargin;
    return {.x = std::clamp(wanted, left, furthest),
            .top = top,
            .room = std::max(0.0, top - (visible.y + kMargin))};
}

}  // namespace tarnwick::appkit
