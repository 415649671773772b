// The two thresholds of each judged metric, as readers receive them.
#pragma once

namespace tarnwick {

/// Percent; at first those of a fresh store. Never stored; normalised values come from
/// UserSettings::thresholds.
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

/// A lower and an upper threshold that readers may rely on: the lower one lies in 1 to 99, the
/// upper one at least one point above it and at most at 100.
struct ThresholdPair {
    double normal;
    double high;
};

/// Brings a stored pair into that shape. What is not a number counts as below 1.
ThresholdPair normalizedThresholds(double normal, double high);

}  // namespace tarnwick
