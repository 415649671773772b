// SPDX-License-Identifier: MIT
// A sample as metrics for monitoring servers.
#pragma once

#include <string>

#include "tools/exposition.h"
#include "tools/machine_sample.h"

namespace tarnwick::probe {

struct MetricsScope {
    /// Also what a node exporter tells: processor, memory, storage, network, uptime.
    bool all = false;
    /// Greatest number of applications of each kind.
    int limit = 3;
};

/// Gauges and information only, in base units; shares run from 0 to 1. What is unknown is absent.
/// The severities are those of the sample's thresholds.
std::string metricsReport(const MachineSample& sample, Exposition::Format format,
                          MetricsScope scope);

}  // namespace tarnwick::probe
