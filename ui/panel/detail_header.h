// The top of a detail page.
#pragma once

#include <string>

#include "ui/panel/panel_button.h"

namespace tarnwick {

/// One row: the plain button that leads back, with a symbol before its word, the page's title
/// (headline) and the plain button that refreshes.
struct DetailHeader {
    std::string title;
    PanelButton back;
    PanelButton refresh;

    bool operator==(const DetailHeader&) const = default;
};

}  // namespace tarnwick
