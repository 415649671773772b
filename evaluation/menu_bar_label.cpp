// SPDX-License-Identifier: MIT
#include "evaluation/menu_bar_label.h"

namespace tarnwick {

MenuBarLabel menuBarLabel(const MetricDisplaySummary& summary,
                          std::string_view displayModeRawValue) {
    MenuBarLabel label;
    label.symbol = symbolName(summary.severity);
    label.tint = tint(summary.severity);
    if (displayModeRawValue != "iconOnly") {
        label.text = summary.menuBarText;
    }
    label.accessibilityLabel = "Tarnwick status: " + summary.menuBarText;
    return label;
}

}  // namespace tarnwick
