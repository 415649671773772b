// The top of the home page.
#pragma once

#include <string>
#include <vector>

#include "ui/panel/panel_button.h"

namespace tarnwick {

/// The title (headline) and the icon buttons in one row; under it the summary (caption, secondary).
struct PanelHeader {
    std::string title;
    std::vector<PanelButton> buttons;
    std::string summary;

    bool operator==(const PanelHeader&) const = default;
};

}  // namespace tarnwick
