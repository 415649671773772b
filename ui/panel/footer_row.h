// The buttons at the foot of the home page.
#pragma once

#include <vector>

#include "ui/panel/panel_button.h"

namespace tarnwick {

/// The first button stands at the leading edge, the last at the trailing one, at least kSpacing
/// points apart.
struct FooterRow {
    static constexpr int kSpacing = 12;

    std::vector<PanelButton> buttons;

    bool operator==(const FooterRow&) const = default;
};

}  // namespace tarnwick
