// SPDX-License-Identifier: MIT
#include "ui/settings/display_mode_card.h"

namespace tarnwick {

std::string_view DisplayModePreview::icon() const {
    return mode == MenuBarDisplayMode::advanced ? "info.circle.fill" : "checkmark.circle.fill";
}

Tint DisplayModePreview::tint() const {
    return mode == MenuBarDisplayMode::advanced ? Tint::yellow : Tint::green;
}

std::string_view DisplayModePreview::text() const {
    return mode == MenuBarDisplayMode::advanced ? "RAM 80%" : "";
}

std::string_view DisplayModeCard::radioIcon() const {
    return isSelected() ? "largecircle.fill.circle" : "circle";
}

std::string_view DisplayModeCard::title() const {
    return mode == MenuBarDisplayMode::advanced ? "Advanced" : "Icon Only";
}

std::string_view DisplayModeCard::description() const {
    return mode == MenuBarDisplayMode::advanced
               ? "Show the status icon plus one live metric summary."
               : "Show only the status icon in the menu bar.";
}

}  // namespace tarnwick
