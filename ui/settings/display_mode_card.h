// SPDX-License-Identifier: MIT
// The choice of what the status item shows.
#pragma once

#include <string_view>

#include "core/records/tint.h"
#include "settings/user_settings.h"

namespace tarnwick {

/// A strip that shows how the status item looks in a mode.
struct DisplayModePreview {
    /// Points.
    static constexpr int kHeight = 56;

    MenuBarDisplayMode mode = MenuBarDisplayMode::advanced;

    /// Symbol name.
    std::string_view icon() const;
    Tint tint() const;
    /// Empty if only the symbol is shown.
    std::string_view text() const;

    bool operator==(const DisplayModePreview&) const = default;
};

/// The tool tip of the advanced mode where the status item has no room for a text.
inline constexpr std::string_view kIconsOnlyToolTip =
    "This panel shows icons only; the text is in the tool tip.";

/// A press anywhere on the card selects its mode.
struct DisplayModeCard {
    MenuBarDisplayMode mode = MenuBarDisplayMode::advanced;
    /// The mode that is selected now, on this card or another one.
    MenuBarDisplayMode selection = MenuBarDisplayMode::advanced;
    /// What is different from the preview on this desktop; empty for nothing.
    std::string_view toolTip{};

    bool isSelected() const { return selection == mode; }
    /// Symbol name; drawn in the accent colour if the card is selected, otherwise in the secondary
    /// one.
    std::string_view radioIcon() const;
    std::string_view title() const;
    std::string_view description() const;
    DisplayModePreview preview() const { return {mode}; }

    bool operator==(const DisplayModeCard&) const = default;
};

}  // namespace tarnwick
