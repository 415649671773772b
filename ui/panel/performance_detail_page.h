// SPDX-License-Identifier: MIT
// The page behind "Performance & Network".
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

#include "core/records/metric_records.h"
#include "platform/byte_count_formatter.h"
#include "settings/metric_thresholds.h"
#include "ui/panel/page.h"

namespace tarnwick {

/// Everything that the page shows, as it is when the page is built.
struct PerformanceDetailInputs {
    CPUInfo cpuInfo;
    GPUInfo gpuInfo;
    MemoryInfo memoryInfo;
    /// The page shows the first volume only.
    std::vector<StorageInfo> storageInfo;
    NetworkInfo networkInfo;
    // In time order.
    std::vector<UsageSample> cpuUsageHistory;
    std::vector<UsageSample> gpuUsageHistory;
    std::vector<UsageSample> memoryUsageHistory;
    std::vector<UsageSample> storageUsageHistory;
    /// 0 nominal, 1 fair, 2 serious, 3 critical; anything else is unknown.
    std::int64_t thermalState = 0;
    MetricThresholds thresholds;
    /// The actions that can be performed; buttons for all others are disabled.
    std::set<PanelAction> enabledActions;
};

/// A trend shows at most this many samples, the latest ones.
inline constexpr std::size_t kTrendSamples = 30;

Page performanceDetailPage(const PerformanceDetailInputs& inputs,
                           const platform::ByteCountFormatter& formatter);

}  // namespace tarnwick
