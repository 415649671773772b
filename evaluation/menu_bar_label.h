// The status item's label as a value.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/tint.h"
#include "evaluation/metric_summary_resolver.h"

namespace tarnwick {

/// Icon and text in one row, centred vertically, 4 points apart. The icon is drawn hierarchically
/// in `tint`. The text is set at 11 points, medium weight, rounded face, monospaced digits, on one
/// line, leading-aligned in at most 72 points and cut at the end with an ellipsis.
struct MenuBarLabel {
    /// Points between icon and text.
    static constexpr double kSpacing = 4;
    /// Points.
    static constexpr double kFontSize = 11;
    /// Points.
    static constexpr double kMaximumTextWidth = 72;

    std::string symbol;
    Tint tint = Tint::green;
    /// Absent when only the icon is shown.
    std::optional<std::string> text;
    std::string accessibilityLabel;

    bool operator==(const MenuBarLabel&) const = default;
};

/// `displayModeRawValue` is the stored text: exactly "iconOnly" hides the text, everything else
/// shows it.
MenuBarLabel menuBarLabel(const MetricDisplaySummary& summary,
                          std::string_view displayModeRawValue);

}  // namespace tarnwick
