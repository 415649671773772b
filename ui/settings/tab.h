// SPDX-License-Identifier: MIT
// The tabs of the settings window.
#pragma once

#include <array>
#include <string_view>

namespace tarnwick {

enum class Tab { general, customize, about };

/// How a tab is offered.
struct TabItem {
    Tab tab;
    std::string_view label;
    /// Symbol name.
    std::string_view icon;
};

/// In the order in which they are shown.
inline constexpr std::array kTabs = {
    TabItem{Tab::general, "General", "gearshape"},
    TabItem{Tab::customize, "Customize", "dial.high"},
    TabItem{Tab::about, "About", "info.circle"},
};

}  // namespace tarnwick
