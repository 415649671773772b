// SPDX-License-Identifier: MIT
#include "tools/waybar_line.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>

#include "tools/figure_lines.h"
#include "tools/judged_metrics.h"

namespace tarnwick::probe {
namespace {

std::string_view name(MetricSeverity severity) {
    switch (severity) {
        case MetricSeverity::ok:
            return "ok";
        case MetricSeverity::info:
            return "info";
        case MetricSeverity::warning:
            return "warning";
    }
    return "";
}

std::string markup(std::string_view text) {
    std::string result;
    for (const char character : text) {
        switch (character) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            default:
                result += character;
        }
    }
    return result;
}

std::string toolTip(const MachineSample& sample, const MetricDisplaySummary& summary) {
    std::string text = summary.popoverText;
    for (const auto& lines : {figureLines(sample), processLines(sample)}) {
        text += lines.empty() ? "" : "\n";
        for (const FigureLine& line : lines) {
            text += "\n" + line.label + (line.value.empty() ? "" : " " + line.value) +
                    (line.detail.empty() ? "" : " · " + line.detail);
        }
    }
    return markup(text);
}

}  // namespace

std::string waybarLine(const MachineSample& sample) {
    const MetricDisplaySummary summary = displaySummary(sample);
    nlohmann::ordered_json line = {{"text", summary.menuBarText},
                                   {"alt", name(summary.severity)},
                                   {"tooltip", toolTip(sample, summary)},
                                   {"class", name(summary.severity)}};
    std::optional<double> largest;
    for (const JudgedMetric& metric : judgedMetrics(sample)) {
        if (metric.severity == summary.severity) {
            largest = std::max(metric.usage, largest);
        }
    }
    if (largest) {
        line["percentage"] = static_cast<int>(std::clamp(*largest, 0.0, 100.0) + 0.5);
    }
    return line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace tarnwick::probe
