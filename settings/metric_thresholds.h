// SPDX-License-Identifier: MIT
// The two thresholds of each judged metric, as readers receive them.
#pragma once

namespace tarnwick {

/// Percent. The initial values are those of an empty store. Never stored; UserSettings::thresholds
/// gives normalised values.
struct MetricThresholds {
    double cpuNormal = 80;
    double cpuHigh = 90;
    double gpuNormal = 90;
    double gpuHigh = 95;
    double memoryNormal = 80;
    double memoryHigh = 90;
    double storageNormal = 80;
    double storageHigh = 90;

    bool operator==(const MetricThresholds&) const = default;
};

/// A lower and an upper threshold that readers can rely on: the lower one is between 1 and 99, the
/// upper one is at least one point above it and at most 100.
struct ThresholdPair {
    double normal;
    double high;
};

/// Brings a stored pair into these bounds. A value that is not a number counts as below 1.
ThresholdPair normalizedThresholds(double normal, double high);

}  // namespace tarnwick
