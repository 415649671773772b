// SPDX-License-Identifier: MIT
#include "tools/text_page.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/utf8.h"
#include "tools/figure_lines.h"
#include "tools/judged_metrics.h"

namespace tarnwick::probe {
namespace {

constexpr std::size_t kLabelWidth = 8;
constexpr std::size_t kValueWidth = 9;
constexpr std::size_t kGap = 4;
constexpr std::size_t kPageWidth = 80;

std::string_view color(MetricSeverity severity) {
    switch (severity) {
        case MetricSeverity::ok:
            return "\033[32m";
        case MetricSeverity::info:
            return "\033[33m";
        case MetricSeverity::warning:
            return "\033[31m";
    }
    return "";
}

/// For those who see no colour.
std::string_view mark(std::optional<MetricSeverity> severity) {
    switch (severity.value_or(MetricSeverity::ok)) {
        case MetricSeverity::ok:
            return "";
        case MetricSeverity::info:
            return " !";
        case MetricSeverity::warning:
            return " !!";
    }
    return "";
}

std::string colored(std::string text, std::optional<MetricSeverity> severity, bool hasColor) {
    return hasColor && severity ? std::string(color(*severity)) + text + "\033[0m" : text;
}

void append(std::string& page, const std::vector<FigureLine>& lines, bool hasColor) {
    for (const FigureLine& line : lines) {
        // Labels and values are ASCII.
        page += line.label;
        const std::size_t used = line.label.size() + line.value.size();
        constexpr std::size_t columns = kLabelWidth + kValueWidth;
        page.append(used < columns ? columns - used : 1, ' ');
        page += colored(line.value, line.severity, hasColor).append(mark(line.severity));
        if (!line.detail.empty()) {
            page.append(kGap - mark(line.severity).size(), ' ')
                .append(platform::firstCharacters(line.detail, kPageWidth - columns - kGap));
        }
        while (page.ends_with(' ')) {
            page.pop_back();
        }
        page += '\n';
    }
}

}  // namespace

std::string textPage(const MachineSample& sample, bool hasColor) {
    const MetricDisplaySummary summary = displaySummary(sample);
    std::string page = colored(summary.popoverText, summary.severity, hasColor) + "\n\n";
    append(page, figureLines(sample), hasColor);
    const std::vector<FigureLine> processes = processLines(sample);
    if (!processes.empty()) {
        page += '\n';
        append(page, processes, hasColor);
    }
    return page;
}

}  // namespace tarnwick::probe
