// SPDX-License-Identifier: MIT
// The status item's label as a value.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/records/tint.h"
#include "evaluation/metric_summary_resolver.h"

namespace tarnwick {

/// What the status item shows; platform::StatusItemContent says how it is drawn.
struct MenuBarLabel {
    /// Name of the severity's symbol.
    std::string symbol;
    Tint tint = Tint::green;
    /// Absent when only the icon is shown.
    std::optional<std::string> text;
    /// For icon and text together. Contains the text even when only the icon is shown.
    std::string accessibilityLabel;

    bool operator==(const MenuBarLabel&) const = default;
};

/// `displayModeRawValue` is the stored text: exactly "iconOnly" hides the text, everything else
/// shows it.
MenuBarLabel menuBarLabel(const MetricDisplaySummary& summary,
                          std::string_view displayModeRawValue);

}  // namespace tarnwick
