// Leads to another page of the panel.
#pragma once

#include <string>
#include <string_view>

#include "ui/panel/panel_button.h"

namespace tarnwick {

/// A row with the button's title and a symbol at its trailing end.
struct NavigationButton {
    static constexpr std::string_view kTrailingIcon = "chevron.right";

    PanelButton button;

    bool operator==(const NavigationButton&) const = default;
};

}  // namespace tarnwick
