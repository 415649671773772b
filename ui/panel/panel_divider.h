// A hairline across the page.
#pragma once

namespace tarnwick {

struct PanelDivider {
    bool operator==(const PanelDivider&) const = default;
};

}  // namespace tarnwick
