// SPDX-License-Identifier: MIT
// The thresholds of a settings file.
#pragma once

#include <string>

#include "settings/metric_thresholds.h"

namespace tarnwick::probe {

struct ThresholdReading {
    /// The defaults where the file has none, or cannot be read.
    MetricThresholds thresholds{};
    /// There is no such file.
    bool isMissing = false;
    /// Why the file cannot be used; empty otherwise.
    std::string trouble{};
};

/// Reads the file as the desktop program does, and never writes it. Blocks as long as the disk
/// does.
ThresholdReading readThresholds(const std::string& file);

}  // namespace tarnwick::probe
