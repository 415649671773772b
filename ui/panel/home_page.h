// SPDX-License-Identifier: MIT
// The page that the panel opens with.
#pragma once

#include <cstdint>
#include <set>
#include <vector>

#include "core/records/metric_records.h"
#include "evaluation/metric_summary_resolver.h"
#include "platform/byte_count_formatter.h"
#include "settings/metric_thresholds.h"
#include "ui/panel/page.h"

namespace tarnwick {

/// Everything that the home page shows, as it is when the page is built.
struct HomePageInputs {
    MetricDisplaySummary displaySummary;
    SystemInfo systemInfo;
    /// 0 nominal, 1 fair, 2 serious, 3 critical; anything else is unknown.
    std::int64_t thermalState = 0;
    CPUInfo cpuInfo;
    GPUInfo gpuInfo;
    MemoryInfo memoryInfo;
    /// The page shows the first volume only.
    std::vector<StorageInfo> storageInfo;
    BatteryInfo batteryInfo;
    bool batteryDetectionComplete = false;
    std::vector<AppProcessInfo> topCPUProcesses;
    MetricThresholds thresholds;
    bool remindRestartAfterWeek = false;
    /// The actions that can be performed; buttons for all others are disabled.
    std::set<PanelAction> enabledActions;
};

Page homePage(const HomePageInputs& inputs, const platform::ByteCountFormatter& formatter);

}  // namespace tarnwick
