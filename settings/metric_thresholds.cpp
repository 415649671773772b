// SPDX-License-Identifier: MIT
#include "settings/metric_thresholds.h"

namespace tarnwick {

ThresholdPair normalizedThresholds(double normal, double high) {
    // Each comparison is false for a value that is not a number, so such a value becomes the lower
    // bound.
    double n = normal > 1 ? normal : 1;
    if (n > 99) {
        n = 99;
    }
    double h = high > n + 1 ? high : n + 1;
    if (!(h > 2)) {
        h = 2;
    }
    if (h > 100) {
        h = 100;
    }
    return {n, h};
}

}  // namespace tarnwick
