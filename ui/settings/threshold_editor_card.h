// SPDX-License-Identifier: MIT
// The card that sets the two thresholds of one metric.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "core/records/tint.h"
#include "ui/settings/dual_threshold_slider.h"

namespace tarnwick {

/// The metrics that have thresholds.
enum class JudgedMetric { cpu, gpu, memory, storage };

/// What the card of a metric is made from.
struct ThresholdEditor {
    JudgedMetric metric;
    std::string_view title;
    /// Symbol name.
    std::string_view icon;
    ClosedRange normalRange;
    ClosedRange highRange;
};

/// From top to bottom. The storage ranges start at 50, because a warning about a volume that is
/// less than half full makes no sense.
inline constexpr std::array kThresholdEditors = {
    ThresholdEditor{JudgedMetric::cpu, "CPU Usage", "cpu", {10, 99}, {11, 100}},
    ThresholdEditor{JudgedMetric::gpu, "GPU Usage", "display.2", {10, 99}, {11, 100}},
    ThresholdEditor{JudgedMetric::memory, "Memory Usage", "memorychip", {10, 99}, {11, 100}},
    ThresholdEditor{JudgedMetric::storage, "Storage Usage", "internaldrive", {50, 99}, {51, 100}},
};

/// The label above a slider for one of its thresholds: a dot in the colour, then the text.
struct ThresholdValuePill {
    /// Points.
    static constexpr int kDotSize = 8;

    std::string_view title;
    /// Percent.
    double value = 0;
    Tint color = Tint::gray;

    std::string text() const { return std::string(title) + ' ' + wholePercentText(value) + '%'; }

    bool operator==(const ThresholdValuePill&) const = default;
};

/// A headline with its symbol, two pills and the slider.
struct ThresholdEditorCard {
    /// Points between the two pills.
    static constexpr int kPillSpacing = 10;

    JudgedMetric metric = JudgedMetric::cpu;
    std::string_view title;
    /// Symbol name.
    std::string_view icon;
    // Percent, as stored.
    double normal = 0;
    double high = 0;
    ClosedRange normalRange;
    ClosedRange highRange;

    std::array<ThresholdValuePill, 2> pills() const {
        return {ThresholdValuePill{"Normal", normal, Tint::yellow},
                ThresholdValuePill{"High", high, Tint::red}};
    }

    bool operator==(const ThresholdEditorCard&) const = default;
};

}  // namespace tarnwick
