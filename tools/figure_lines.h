// SPDX-License-Identifier: MIT
// A sample as short lines for people.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "evaluation/metric_severity.h"
#include "tools/machine_sample.h"

namespace tarnwick::probe {

struct FigureLine {
    std::string label;
    /// A short value, such as "93%"; may be empty.
    std::string value;
    /// The rest of what is known; may be empty.
    std::string detail{};
    /// Absent for what nobody judges.
    std::optional<MetricSeverity> severity{};

    bool operator==(const FigureLine&) const = default;
};

/// One line for each source that answered, in the order of the panel. Texts are UTF-8 on one
/// line, without characters that command a terminal.
std::vector<FigureLine> figureLines(const MachineSample& sample);

/// The rows of the two lists of processes.
std::vector<FigureLine> processLines(const MachineSample& sample);

}  // namespace tarnwick::probe
